#pragma once

#include "Platform/Foundation/URL.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KeyloftBrowserKit {

/// The title and URL of a bookmarked page. A plain value type.
struct Bookmark {
    /// The page's title in UTF-8. May contain line breaks.
    std::string title;
    Platform::URL url;

    /// The title with each line break replaced by a space, for the bookmarks bar and menu.
    std::string titleInOneLine() const;

    /// Parses the contents of a bookmarks file: a JSON array of objects with the string members "title" and
    /// "url". Ignores other members. Returns nothing if `json` is not valid JSON, if an element lacks one of
    /// the two members, or if a URL is invalid.
    static std::optional<std::vector<Bookmark>> decode(std::string_view json);

    /// Returns the contents of a bookmarks file that lists `bookmarks` in the given order. Repairs ill-formed
    /// UTF-8 in titles.
    static std::string encode(std::span<const Bookmark> bookmarks);

    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

} // namespace KeyloftBrowserKit
