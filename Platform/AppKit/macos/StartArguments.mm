#include "Platform/AppKit/StartArguments.h"

namespace Platform {

// NSUserDefaults reads each "-name value" pair as a default. Launch Services of older systems add "-psn_0_1".
bool isSystemArgument(std::string_view argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
}

} // namespace Platform
