#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The encoding and parsing rules of RFC 3986, as applied by Foundation. Internal to Foundation/URL*.
namespace Platform::URLEncoding {

/// Bits for the sets of ASCII characters that a component may contain unencoded. No set contains "%".
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

/// The components of a URL. Only the division into components is validated, not their contents.
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

/// A successfully parsed URL. `text` is a copy of the source, re-encoded if the source was not valid as
/// given. Cannot be copied or moved, because `parts` refers to `text`.
struct Parsed {
    std::string text;
    Parts parts;
    std::optional<std::int64_t> port;

    Parsed() = default;
    Parsed(const Parsed&) = delete;
    Parsed& operator=(const Parsed&) = delete;
    ~Parsed() = default;
};

/// Parses `text` into `parsed`. Returns false if `text` is not a valid URL. If `allowEmptyScheme` is true, a
/// leading ":" terminates an empty scheme instead of being part of the path.
bool parse(std::string_view text, bool allowEmptyScheme, Parsed& parsed);

/// Returns true if every character of `text` is allowed or part of a valid percent escape.
bool isValid(std::string_view text, Allowed allowed);
bool isValidScheme(std::string_view scheme);
/// Percent-encodes every character of `text` that is not allowed, including "%".
std::string encoded(std::string_view text, Allowed allowed);
/// Returns `text` unchanged if it is valid, otherwise percent-encodes it.
std::string encodedUnlessValid(std::string_view text, Allowed allowed);
/// Percent-encodes `path`, including a ":" that could otherwise be parsed as the end of a scheme.
std::string encodedPath(std::string_view path);

/// Percent-decodes `text` to bytes. Invalid escapes remain unchanged.
std::string decodedBytes(std::string_view text);
/// Like `decodedBytes`, but returns nothing if the decoded bytes are not valid UTF-8.
std::optional<std::string> decoded(std::string_view text);

} // namespace Platform::URLEncoding
