#pragma once

#include "Platform/Foundation/URL.h"

#include <string_view>

namespace KeyloftBrowserKit {

/// Parses a URL literal. Aborts if `text` is not a valid URL.
Platform::URL builtInURL(std::string_view text);

} // namespace KeyloftBrowserKit
