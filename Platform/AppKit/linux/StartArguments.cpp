#include "Platform/AppKit/StartArguments.h"

namespace Platform {

// With `--gapplication-service`, GApplication waits for a request from D-Bus.
bool isSystemArgument(std::string_view argument) { return argument == "--gapplication-service"; }

} // namespace Platform
