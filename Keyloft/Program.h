#pragma once

#include "Platform/AppKit/ProgramInfo.h"

namespace Keyloft {

/// Returns the name, version and other information that identify the browser to the desktop and in its About
/// panel.
Platform::ProgramInfo program();

} // namespace Keyloft
