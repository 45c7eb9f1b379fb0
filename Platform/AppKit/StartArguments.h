#pragma once

#include "Platform/Foundation/URL.h"

#include <span>
#include <string_view>
#include <vector>

namespace Platform {

/// Returns the arguments that parse as URLs with a scheme, in their original order and spelling.
std::vector<URL> urlsOf(std::span<char* const> arguments);

/// Returns true if the argument is meant for AppKit or GLib instead of the program. On macOS, such arguments
/// are the process serial number and the user defaults that Finder, Xcode or the user passes, for example
/// "-NSDocumentRevisionsDebugMode". On Linux, D-Bus passes such an argument when it launches a program.
bool isSystemArgument(std::string_view argument);

} // namespace Platform
