#pragma once

#include <string>
#include <string_view>

namespace Platform {

/// `text` with line breaks and other control characters written as escapes ("\n", "\x1b"), tabs aside.
std::string escapingControlCharacters(std::string_view text);

} // namespace Platform
