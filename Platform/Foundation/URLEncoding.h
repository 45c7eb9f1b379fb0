#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The rules of RFC 3986 as Foundation applies them. Shared by URL, URLComponents and URLHost; do not include
/// it elsewhere.
namespace Platform::URLEncoding {

/// Sets of ASCII characters that are literal in a component, as bits of a table. "%" belongs to no set.
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

/// The components of a text. Only the division into components is validated, not their contents.
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

/// A valid parsed text. `parts` refer to `text`, which is a re-encoded copy of the source if the source was
/// not valid as given. It is neither copied nor moved, so that `parts` remain valid.
struct Parsed {
    std::string text;
    Parts parts;
    std::optional<std::int64_t> port;

    Parsed() = default;
    Parsed(const Parsed&) = delete;
    Parsed& operator=(const Parsed&) = delete;
    ~Parsed() = default;
};

/// Parses `text` into `parsed`. Returns false if it is not a valid URL. If `allowEmptyScheme` is true, a
/// leading ":" ends an empty scheme instead of being part of the path.
bool parse(std::string_view text, bool allowEmptyScheme, Parsed& parsed);

/// Returns true if all of `text` is allowed or part of a valid escape.
bool isValid(std::string_view text, Allowed allowed);
bool isValidScheme(std::string_view scheme);
/// `text` with every character that is not allowed encoded, including "%".
std::string encoded(std::string_view text, Allowed allowed);
/// `text` itself if it is valid, otherwise encoded.
std::string encodedUnlessValid(std::string_view text, Allowed allowed);
/// `path`, encoded. In the first segment of a path that does not begin with "/", a ":" is encoded, too, so
/// that it is not read as the end of a scheme.
std::string encodedPath(std::string_view path);

/// Percent-decodes `text` to bytes. Keeps invalid escapes as they are.
std::string decodedBytes(std::string_view text);
/// Does the same, but returns nothing if the bytes are not UTF-8.
std::optional<std::string> decoded(std::string_view text);

} // namespace Platform::URLEncoding
