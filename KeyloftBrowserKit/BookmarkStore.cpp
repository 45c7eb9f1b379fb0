#include "KeyloftBrowserKit/BookmarkStore.h"

#include "KeyloftBrowserKit/AddressInput.h"
#include "KeyloftBrowserKit/BuiltInURL.h"
#include "Platform/Foundation/DiagnosticLog.h"
#include "Platform/Foundation/FileManager.h"

#include <algorithm>
#include <string>
#include <utility>

namespace KeyloftBrowserKit {

namespace {

std::vector<Bookmark> load(const Platform::URL& fileURL) {
    try {
        auto bookmarks =
            Bookmark::decode(Platform::FileManager::defaultManager().contents(fileURL.filePath()));
        return bookmarks ? *std::move(bookmarks) : BookmarkStore::seed();
    } catch (const Platform::FileError&) {
        // Do not report an error, because the file does not exist until the first change is saved.
        return BookmarkStore::seed();
    }
}

} // namespace

const std::vector<Bookmark>& BookmarkStore::seed() {
    static const std::vector<Bookmark> bookmarks = {
        {.title = "Apple", .url = builtInURL("https://www.apple.com/")},
        {.title = "DuckDuckGo", .url = AddressInput::searchBase()},
        {.title = "Wikipedia", .url = builtInURL("https://www.wikipedia.org/")},
        {.title = "Hacker News", .url = builtInURL("https://news.ycombinator.com/")},
        {.title = "GitHub", .url = builtInURL("https://github.com/")},
        {.title = "Keyloft", .url = builtInURL("https://keyloft.orvane.velde/")},
    };
    return bookmarks;
}

BookmarkStore::BookmarkStore(Platform::URL fileURL)
    : fileURL_(std::move(fileURL))
    , bookmarks_(load(fileURL_)) {}

bool BookmarkStore::contains(const Platform::URL& url) const {
    return std::ranges::find(bookmarks_, url, &Bookmark::url) != bookmarks_.end();
}

void BookmarkStore::add(Bookmark bookmark) {
    if (contains(bookmark.url)) {
        return;
    }
    bookmarks_.push_back(std::move(bookmark));
    save();
}

void BookmarkStore::remove(const Platform::URL& url) {
    // Copy the URL, because `url` may refer to a bookmark that `erase_if` moves.
    std::erase_if(bookmarks_, [removed = url](const Bookmark& bookmark) { return bookmark.url == removed; });
    save();
}

void BookmarkStore::save() {
    try {
        const auto& files = Platform::FileManager::defaultManager();
        files.createDirectory(fileURL_.deletingLastPathComponent().filePath());
        files.writeAtomically(Bookmark::encode(bookmarks_), fileURL_.filePath());
    } catch (const Platform::FileError& error) {
        Platform::diagnosticLog("Keyloft: bookmarks save failed: " + error.localizedDescription());
        return;
    }
    Platform::NotificationCenter::defaultCenter().post(didChange, this);
}

} // namespace KeyloftBrowserKit
