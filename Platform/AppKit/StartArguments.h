#pragma once

#include "Platform/Foundation/URL.h"

#include <span>
#include <string_view>
#include <vector>

namespace Platform {

/// The arguments of a program that are URLs with a scheme, exactly as given.
std::vector<URL> urlsOf(std::span<char* const> arguments);

/// Returns true if the argument is addressed to the system's frameworks and not to the program. None is on
/// Linux. On macOS these are the user defaults that Finder, Xcode and users pass, such as
/// "-NSDocumentRevisionsDebugMode", and the process serial number.
bool isSystemArgument(std::string_view argument);

} // namespace Platform
