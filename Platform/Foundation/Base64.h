#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// Encodes `bytes` in the standard alphabet with "=" padding and without line breaks.
std::string base64Encoded(std::string_view bytes);

/// Decodes `text`. Returns nothing if it contains any other character, including a line break, or is not
/// padded to a multiple of four characters. Ignores unused bits of the last character.
std::optional<std::string> base64Decoded(std::string_view text);

} // namespace Platform
