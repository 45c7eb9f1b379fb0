#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

/// A parsed URL or relative reference, exactly as Foundation understands its text.
///
/// Foundation follows RFC 3986 but is lenient: what a component may not hold is percent-encoded, an
/// international host becomes its ASCII form (UTS #46), and only a text without any sensible reading (a bad
/// scheme, host or port, or no text at all) is no URL. Nothing is normalised: case, dot segments and default
/// ports stay as they were given.
///
/// A plain value: the text and where its components lie. Safe to read from any thread. Views that accessors
/// return live as long as the URL that they were asked of.
class URL {
public:
    /// The URL that `text` spells, or nothing where Foundation has none.
    static std::optional<URL> fromString(std::string_view text);

    /// The file URL of a path. A relative path gives a relative reference without a scheme (no working
    /// directory is consulted), an empty one "./"; a directory's path ends in "/". A NUL byte ends the path,
    /// as it does for the system.
    static URL fromFilePath(std::string_view path, bool isDirectory);

    /// The whole text, percent-encoded. URLs are equal if their texts are.
    const std::string& absoluteString() const& { return text_; }
    std::string absoluteString() && { return std::move(text_); }

    /// As written (no case folding). Empty, but present, for a text that begins with ":".
    std::optional<std::string_view> scheme() const&;
    std::optional<std::string_view> scheme() const&& = delete;
    /// Percent-decoded, an IP literal without its brackets. Absent without an authority, and if the bytes are
    /// not UTF-8.
    std::optional<std::string> host() const;
    /// Absent too where the number is too large for 64 bits.
    std::optional<std::int64_t> port() const;
    /// Percent-decoded, trailing slashes kept; empty where the decoded bytes are no UTF-8, and without a
    /// leading byte order mark.
    std::string path() const;
    /// Percent-encoded, without "?".
    std::optional<std::string_view> query() const&;
    std::optional<std::string_view> query() const&& = delete;
    /// Percent-encoded, without "#".
    std::optional<std::string_view> fragment() const&;
    std::optional<std::string_view> fragment() const&& = delete;
    /// Percent-decoded. Absent without user information, and if the bytes are not UTF-8.
    std::optional<std::string> user() const;
    /// Percent-encoded.
    std::optional<std::string> password() const;

    /// As in the text. Present, but possibly empty, in every URL that has user information.
    std::optional<std::string_view> percentEncodedUser() const&;
    std::optional<std::string_view> percentEncodedUser() const&& = delete;
    /// As in the text, an IP literal with its brackets.
    std::optional<std::string_view> percentEncodedHost() const&;
    std::optional<std::string_view> percentEncodedHost() const&& = delete;
    std::string_view percentEncodedPath() const&;
    std::string_view percentEncodedPath() const&& = delete;

    /// This URL with `component` (not encoded; "/" in it separates) added to its path, with one "/" between.
    /// The path ends in "/" exactly if that makes it a directory's. An empty component adds nothing.
    URL appendingPathComponent(std::string_view component, bool isDirectory) const;
    /// This URL without its path's last component, the path ending in "/"; the same URL at the root.
    URL deletingLastPathComponent() const;
    /// The file system's path: decoded to bytes, which need not be UTF-8, without a trailing slash except the
    /// root's.
    std::string filePath() const;

    /// Compares the texts.
    friend bool operator==(const URL& left, const URL& right) { return left.text_ == right.text_; }

private:
    /// Where a component lies in `text_`.
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
