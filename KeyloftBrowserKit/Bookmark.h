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
    /// Shown in the bar and the menu. UTF-8.
    std::string title;
    Platform::URL url;

    /// The list that a bookmarks file holds: a JSON array of objects with the strings "title" and "url".
    /// Other members are passed over. Nothing where the text is not valid JSON or any element lacks a member,
    /// or its URL is none.
    static std::optional<std::vector<Bookmark>> decode(std::string_view json);

    /// The text of a bookmarks file, in list order.
    static std::string encode(std::span<const Bookmark> bookmarks);

    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

} // namespace KeyloftBrowserKit
