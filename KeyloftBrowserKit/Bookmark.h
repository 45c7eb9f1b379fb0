#pragma once

#include "Platform/Foundation/URL.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KeyloftBrowserKit {

/// A page to come back to. A plain value.
struct Bookmark {
    /// The page's title, line breaks included. UTF-8.
    std::string title;
    Platform::URL url;

    /// The title with a space for each line break, for the bar and the menu.
    std::string titleInOneLine() const;

    /// Reads a bookmarks file: a JSON array of objects with the string members "title" and "url"; other
    /// members are ignored. Returns nothing if `json` is not valid JSON, if an element lacks one of the two
    /// members, or if its URL does not parse.
    static std::optional<std::vector<Bookmark>> decode(std::string_view json);

    /// Writes a bookmarks file, in list order.
    static std::string encode(std::span<const Bookmark> bookmarks);

    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

} // namespace KeyloftBrowserKit
