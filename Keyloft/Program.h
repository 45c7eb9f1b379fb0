#pragma once

#include "Platform/AppKit/ProgramInfo.h"

namespace Keyloft {

/// Identifies the browser to the desktop and in its About panel.
Platform::ProgramInfo program();

} // namespace Keyloft
