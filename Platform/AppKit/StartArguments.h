#pragma once

#include "Platform/Foundation/URL.h"

#include <span>
#include <vector>

namespace Platform {

/// The arguments of a program that are URLs with a scheme, exactly as given.
std::vector<URL> urlsOf(std::span<char* const> arguments);

} // namespace Platform
