#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Texts are UTF-8. Every function here reads an ill-formed sequence as one U+FFFD.
namespace Platform {

/// The number of user-perceived characters (extended grapheme clusters; CR LF is one). Counts the first 2 GiB
/// of longer texts.
std::size_t characterCount(std::string_view text);

/// The first `count` characters, or the whole text if it has fewer.
std::string characterPrefix(std::string_view text, std::size_t count);

/// Letters, marks and numbers of all scripts (general categories L, M and N).
bool isAlphanumeric(char32_t codePoint);

/// Space separators, tab, the line and paragraph separators, U+0085 and U+200B.
bool isWhitespaceOrNewline(char32_t codePoint);

/// `text` without leading and trailing code points for which `isWhitespaceOrNewline` holds.
std::string_view trimmingWhitespaceAndNewlines(std::string_view text);

/// `text` with A to Z in lower case and everything else unchanged.
std::string asciiLowercased(std::string_view text);

bool isValidUTF8(std::string_view bytes);

/// `bytes` with each ill-formed sequence replaced by U+FFFD.
std::string repairingUTF8(std::string_view bytes);

/// Returns the code point at `offset` and moves `offset` past it.
char32_t nextCodePoint(std::string_view text, std::size_t& offset);

/// Appends the UTF-8 of `codePoint`, or that of U+FFFD if `codePoint` is not a Unicode scalar value.
void appendUTF8(std::string& text, char32_t codePoint);

} // namespace Platform
