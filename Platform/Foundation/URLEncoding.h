#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The rules of RFC 3986 as Foundation applies them, shared by URL and URLComponents. Nobody else includes
/// this.
namespace Platform::URLEncoding {

/// Which characters stand for themselves where; bits of a table over ASCII. "%" belongs to none of them.
enum class Allowed : std::uint16_t {
    user = 1U << 0U,
    host = 1U << 1U,
    pathFirstSegment = 1U << 2U,
    path = 1U << 3U,
    query = 1U << 4U,
    queryItem = 1U << 5U,
    ipLiteral = 1U << 6U,
    scheme = 1U << 7U,
};

/// Where the components of a text lie. Nothing is validated but the text's division.
struct Parts {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> user;
    std::optional<std::string_view> password;
    std::optional<std::string_view> host;
    std::optional<std::string_view> port;
    std::string_view path;
    std::optional<std::string_view> query;
    std::optional<std::string_view> fragment;
};

/// A parsed text: valid, with `parts` lying in `text`, which was encoded and put together anew where need be.
/// It stays where it is, so that they do.
struct Parsed {
    std::string text;
    Parts parts;
    std::optional<std::int64_t> port;

    Parsed() = default;
    Parsed(const Parsed&) = delete;
    Parsed& operator=(const Parsed&) = delete;
    ~Parsed() = default;
};

/// Fills `parsed` from `text`; false where it is no URL. `allowEmptyScheme` reads a leading ":" as the end of
/// an empty scheme instead of as part of the path.
bool parse(std::string_view text, bool allowEmptyScheme, Parsed& parsed);

/// Whether all of `text` is allowed or part of a valid escape.
bool isValid(std::string_view text, Allowed allowed);
bool isValidScheme(std::string_view scheme);
/// `text` with all that is not allowed encoded, "%" included.
std::string encoded(std::string_view text, Allowed allowed);
/// `text` itself where it is valid, else encoded.
std::string encodedUnlessValid(std::string_view text, Allowed allowed);
/// A ":" in the first segment of a path that does not begin with "/" is encoded too, lest it be read as a
/// scheme's.
std::string encodedPath(std::string_view path);

/// Percent-decodes `text` to bytes. Keeps invalid escapes as they are.
std::string decodedBytes(std::string_view text);
/// Does the same, but returns nothing if the bytes are not UTF-8.
std::optional<std::string> decoded(std::string_view text);

} // namespace Platform::URLEncoding
