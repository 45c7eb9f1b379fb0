#include "Platform/AppKit/StartArguments.h"

namespace Platform {

bool isSystemArgument(std::string_view /*argument*/) { return false; }

} // namespace Platform
