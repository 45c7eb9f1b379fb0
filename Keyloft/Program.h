#pragma once

#include "Platform/AppKit/ProgramInfo.h"

namespace Keyloft {

/// The browser as the system and its About panel know it.
Platform::ProgramInfo program();

} // namespace Keyloft
