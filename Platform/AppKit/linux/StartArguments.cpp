#include "Platform/AppKit/StartArguments.h"

namespace Platform {

// GApplication waits for a request from D-Bus if it is started with this.
bool isSystemArgument(std::string_view argument) { return argument == "--gapplication-service"; }

} // namespace Platform
