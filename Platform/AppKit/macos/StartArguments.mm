#include "Platform/AppKit/StartArguments.h"

namespace Platform {

// NSUserDefaults reads each "-name value" pair as a user default. Launch Services of older macOS versions
// adds "-psn_0_1".
bool isSystemArgument(std::string_view argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
}

} // namespace Platform
