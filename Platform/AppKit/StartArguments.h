#pragma once

#include "Platform/Foundation/URL.h"

#include <span>
#include <string_view>
#include <vector>

namespace Platform {

/// Returns the arguments that are URLs with a scheme, exactly as given.
std::vector<URL> urlsOf(std::span<char* const> arguments);

/// Returns true if the argument is meant for AppKit or GLib and not for the program. On macOS these are the
/// user defaults that Finder, Xcode and users pass, such as "-NSDocumentRevisionsDebugMode", and the process
/// serial number; on Linux the option with which D-Bus starts a program.
bool isSystemArgument(std::string_view argument);

} // namespace Platform
