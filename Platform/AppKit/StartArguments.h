#pragma once

#include "Platform/Foundation/URL.h"

#include <span>
#include <string_view>
#include <vector>

namespace Platform {

/// Returns the arguments that are URLs with a scheme, exactly as given.
std::vector<URL> urlsOf(std::span<char* const> arguments);

/// Returns true if the argument is meant for AppKit or GLib instead of the program. On macOS these are user
/// defaults passed by Finder, Xcode or the user, such as "-NSDocumentRevisionsDebugMode", and the process
/// serial number. On Linux it is the option with which D-Bus launches a program.
bool isSystemArgument(std::string_view argument);

} // namespace Platform
