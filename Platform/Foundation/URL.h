#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Platform {

/// A URL or relative reference, parsed exactly as Foundation does.
///
/// Foundation follows RFC 3986 but is lenient: it percent-encodes characters that a component may not contain
/// and converts an international host to its ASCII form (UTS #46). It rejects only an empty text and an
/// invalid scheme, host or port. Nothing is normalised: case, dot segments and default ports remain as given.
///
/// A plain value that consists of the text and the positions of its components. Safe to read from any thread.
/// A view that an accessor returns is valid as long as its URL.
class URL {
public:
    /// Parses `text`. Returns nothing if Foundation does not accept it or if it is longer than 256 MiB.
    static std::optional<URL> fromString(std::string_view text);

    /// The file URL of a path. A relative path gives a relative reference without a scheme (no working
    /// directory is consulted), an empty one "./"; a directory's path ends in "/". A NUL byte ends the path,
    /// as it does for the kernel.
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
    /// Also absent if the number exceeds 64 bits.
    std::optional<std::int64_t> port() const;
    /// Percent-decoded, with trailing slashes but without a leading byte order mark. Empty if the decoded
    /// bytes are not UTF-8.
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

    /// This URL with `component` appended to its path, with one "/" between. `component` is not
    /// percent-encoded; a "/" in it separates components. The path ends in "/" if and only if `isDirectory`
    /// is true. An empty component changes nothing.
    URL appendingPathComponent(std::string_view component, bool isDirectory) const;
    /// This URL without its path's last component, the path ending in "/"; the same URL at the root.
    URL deletingLastPathComponent() const;
    /// The path in the file system: percent-decoded to bytes, which need not be UTF-8, without a trailing
    /// slash except that of the root.
    std::string filePath() const;

    /// Compares the texts.
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
