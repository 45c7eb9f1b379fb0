#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// Standard alphabet, padded with "=", no line breaks.
std::string base64Encoded(std::string_view bytes);

/// The bytes that `text` encodes; nothing where it holds any other character, a line break included, or is
/// not padded to a multiple of four. Bits left over in the last character are ignored.
std::optional<std::string> base64Decoded(std::string_view text);

} // namespace Platform
