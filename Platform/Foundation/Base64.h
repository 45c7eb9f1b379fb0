#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// Encodes `bytes` in the standard alphabet with "=" padding and without line breaks.
std::string base64Encoded(std::string_view bytes);

/// Decodes `text`. Returns nothing if it contains characters outside the standard alphabet, including line
/// breaks, or is not padded to a multiple of four characters. Unused bits of the last character are ignored.
std::optional<std::string> base64Decoded(std::string_view text);

} // namespace Platform
