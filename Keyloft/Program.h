#pragma once

#include "Platform/AppKit/ProgramInfo.h"

namespace Keyloft {

/// Returns the browser's name, version and other information for the desktop and the About panel.
Platform::ProgramInfo program();

} // namespace Keyloft
