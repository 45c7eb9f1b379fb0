#include "Platform/AppKit/StartArguments.h"

namespace Platform {

// NSUserDefaults reads "-name value" pairs as defaults. Older versions of Launch Services add "-psn_0_1".
bool isSystemArgument(std::string_view argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
}

} // namespace Platform
