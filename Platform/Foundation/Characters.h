#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Texts are UTF-8. An ill-formed byte counts as one U+FFFD everywhere here, so that nothing is undefined.
namespace Platform {

/// The number of characters as a person perceives them (extended grapheme clusters; CR LF is one).
std::size_t characterCount(std::string_view text);

/// The first `count` characters; the whole text where it has no more.
std::string characterPrefix(std::string_view text, std::size_t count);

/// Letters, marks and numbers of all scripts (general categories L, M and N).
bool isAlphanumeric(char32_t codePoint);

/// Space separators, tab, the line and paragraph separators, U+0085 and U+200B.
bool isWhitespaceOrNewline(char32_t codePoint);

/// `text` without what isWhitespaceOrNewline at both ends.
std::string_view trimmingWhitespaceAndNewlines(std::string_view text);

bool isValidUTF8(std::string_view bytes);

/// `bytes` with each ill-formed sequence replaced by U+FFFD.
std::string repairingUTF8(std::string_view bytes);

/// The code point at `offset`, which is moved behind it; U+FFFD and one byte on for ill-formed bytes.
char32_t nextCodePoint(std::string_view text, std::size_t& offset);

/// Appends the UTF-8 of `codePoint` (U+FFFD's for what is no Unicode scalar value).
void appendUTF8(std::string& text, char32_t codePoint);

} // namespace Platform
