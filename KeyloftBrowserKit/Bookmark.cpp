#include "KeyloftBrowserKit/Bookmark.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/JSON.h"

#include <algorithm>
#include <array>
#include <utility>

namespace KeyloftBrowserKit {

using Platform::JSONValue;

std::optional<std::vector<Bookmark>> Bookmark::decode(std::string_view json) {
    const auto list = JSONValue::parse(json);
    if (!list || list->array() == nullptr) {
        return std::nullopt;
    }
    std::vector<Bookmark> bookmarks;
    bookmarks.reserve(list->array()->size());
    for (const JSONValue& element : *list->array()) {
        const auto* title = element.stringMember("title");
        const auto* urlText = element.stringMember("url");
        auto url = urlText == nullptr ? std::nullopt : Platform::URL::fromString(*urlText);
        if (title == nullptr || !url) {
            return std::nullopt;
        }
        bookmarks.push_back({*title, *std::move(url)});
    }
    return bookmarks;
}

std::string Bookmark::titleInOneLine() const {
    // The mandatory line breaks of the Unicode line breaking algorithm (UAX #14).
    static constexpr std::array<std::string_view, 8> lineBreaks = {"\r\n", "\n",     "\r",     "\v",
                                                                   "\f",   "\u0085", "\u2028", "\u2029"};
    std::string line;
    line.reserve(title.size());
    for (std::string_view rest = title; !rest.empty();) {
        const auto* const found = std::ranges::find_if(
            lineBreaks, [rest](std::string_view lineBreak) { return rest.starts_with(lineBreak); });
        const bool isLineBreak = found != lineBreaks.end();
        line += isLineBreak ? ' ' : rest.front();
        rest.remove_prefix(isLineBreak ? found->size() : 1);
    }
    return line;
}

std::string Bookmark::encode(std::span<const Bookmark> bookmarks) {
    JSONValue::Array list;
    list.reserve(bookmarks.size());
    for (const Bookmark& bookmark : bookmarks) {
        list.emplace_back(JSONValue::Object{
            // Repair the title, because ill-formed UTF-8 in one title would make the whole file unreadable.
            {"title", Platform::repairingUTF8(bookmark.title)},
            {"url", bookmark.url.absoluteString()},
        });
    }
    return Platform::prettyJSON(std::move(list));
}

} // namespace KeyloftBrowserKit
