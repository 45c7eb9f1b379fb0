#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Functions for UTF-8 strings. Those that decode a string treat an ill-formed sequence as one U+FFFD.
namespace Platform {

/// Returns the number of extended grapheme clusters (CR LF counts as one) in the first 2 GiB of a string.
std::size_t characterCount(std::string_view text);

/// Returns the first `count` user-perceived characters, or all of `text` if it has fewer.
std::string characterPrefix(std::string_view text, std::size_t count);

/// Returns true for letters, marks and numbers of all scripts (general categories L, M and N).
bool isAlphanumeric(char32_t codePoint);

/// Returns true for separators (general category Z), U+0009 to U+000D, U+0085 and U+200B.
bool isWhitespaceOrNewline(char32_t codePoint);

/// Returns `text` without leading and trailing code points for which `isWhitespaceOrNewline` returns true.
std::string_view trimmingWhitespaceAndNewlines(std::string_view text);

/// Returns `text` with the letters A to Z converted to lower case and all other bytes unchanged.
std::string asciiLowercased(std::string_view text);

bool isValidUTF8(std::string_view bytes);

/// Returns `bytes` with each ill-formed sequence replaced by U+FFFD.
std::string repairingUTF8(std::string_view bytes);

/// Returns the code point at `offset` and moves `offset` past it.
char32_t nextCodePoint(std::string_view text, std::size_t& offset);

/// Appends `codePoint` to `text` in UTF-8, or U+FFFD if `codePoint` is not a Unicode scalar value.
void appendUTF8(std::string& text, char32_t codePoint);

} // namespace Platform
