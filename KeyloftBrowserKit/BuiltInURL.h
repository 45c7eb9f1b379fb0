#pragma once

#include "Platform/Foundation/URL.h"

#include <string_view>

namespace KeyloftBrowserKit {

/// A URL that is part of the program; a text that is none stops the process.
Platform::URL builtInURL(std::string_view text);

} // namespace KeyloftBrowserKit
