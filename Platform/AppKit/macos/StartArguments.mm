#include "Platform/AppKit/StartArguments.h"

namespace Platform {

// NSUserDefaults takes every "-name value" for a default. The launch services of older systems add
// "-psn_0_1".
bool isSystemArgument(std::string_view argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
}

} // namespace Platform
