#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

/// A URL or relative reference, parsed exactly as Foundation parses it.
///
/// Foundation follows RFC 3986 but is lenient: it percent-encodes characters that a component may not contain
/// and converts an international host to its ASCII form (UTS #46). It rejects only an empty string and an
/// invalid scheme, host or port. Nothing is normalized: case, dot segments and default ports remain as given.
///
/// A plain value type that consists of the string and the positions of its components. Safe to read from any
/// thread. A view returned by an accessor is valid as long as the URL exists and is not modified.
class URL {
public:
    /// Parses `text`. Returns nothing if Foundation would reject it or if it is longer than 256 MiB.
    static std::optional<URL> fromString(std::string_view text);

    /// Creates a file URL from a path. A relative path becomes a relative reference without a scheme; the
    /// working directory is not consulted. An empty path becomes "./". The path of a directory ends in "/". A
    /// NUL byte terminates the path, as it does for the kernel.
    static URL fromFilePath(std::string_view path, bool isDirectory);

    /// The whole URL, percent-encoded. Two URLs are equal if these strings are equal.
    const std::string& absoluteString() const& { return text_; }
    std::string absoluteString() && { return std::move(text_); }

    /// The scheme as written, without case folding. Present but empty if the URL begins with ":".
    std::optional<std::string_view> scheme() const&;
    std::optional<std::string_view> scheme() const&& = delete;
    /// The host, percent-decoded. An IP literal is returned without its brackets. Absent if the authority is
    /// missing or empty, or if the decoded bytes are not valid UTF-8.
    std::optional<std::string> host() const;
    /// The port. Absent if the URL has no port or the number does not fit in 64 bits.
    std::optional<std::int64_t> port() const;
    /// The percent-decoded path, without a leading byte order mark. Empty if it is not valid UTF-8.
    std::string path() const;
    /// The query, percent-encoded, without the "?".
    std::optional<std::string_view> query() const&;
    std::optional<std::string_view> query() const&& = delete;
    /// The fragment, percent-encoded, without the "#".
    std::optional<std::string_view> fragment() const&;
    std::optional<std::string_view> fragment() const&& = delete;
    /// The user, percent-decoded. Absent if the URL has no user information or the user is not valid UTF-8.
    std::optional<std::string> user() const;
    /// The password, percent-encoded.
    std::optional<std::string> password() const;

    /// The user as it appears in the URL. Present, but possibly empty, if the URL has user information.
    std::optional<std::string_view> percentEncodedUser() const&;
    std::optional<std::string_view> percentEncodedUser() const&& = delete;
    /// The host as it appears in the URL. An IP literal includes its brackets.
    std::optional<std::string_view> percentEncodedHost() const&;
    std::optional<std::string_view> percentEncodedHost() const&& = delete;
    std::string_view percentEncodedPath() const&;
    std::string_view percentEncodedPath() const&& = delete;

    /// Returns this URL with `component` appended to its path, separated by one "/". `component` is not
    /// percent-encoded; it may consist of several components separated by "/". The path of the result ends in
    /// "/" if and only if `isDirectory` is true. An empty component leaves the URL unchanged.
    URL appendingPathComponent(std::string_view component, bool isDirectory) const;
    /// Returns this URL without the last component of its path. The path of the result ends in "/". The root
    /// and an empty path remain unchanged.
    URL deletingLastPathComponent() const;
    /// The file-system path as percent-decoded bytes. Trailing slashes are removed, except for the root.
    std::string filePath() const;

    /// Compares the strings of the URLs, without normalization.
    friend bool operator==(const URL& left, const URL& right) { return left.text_ == right.text_; }

private:
    /// The position of a component in `text_`.
    struct Extent {
        static constexpr std::uint32_t absent = std::numeric_limits<std::uint32_t>::max();

        bool isPresent() const { return begin != absent; }

        std::uint32_t begin = absent;
        std::uint32_t length = 0;
    };

    URL() = default;

    std::optional<std::string_view> optionalView(Extent extent) const;
    std::string_view view(Extent extent) const;
    URL replacingPath(std::string_view percentEncodedPath) const;

    std::string text_;
    std::optional<std::int64_t> port_;
    Extent scheme_;
    Extent user_;
    Extent password_;
    Extent host_;
    Extent path_;
    Extent query_;
    Extent fragment_;
};

} // namespace Platform
