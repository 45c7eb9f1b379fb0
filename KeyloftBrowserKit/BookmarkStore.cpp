#include "KeyloftBrowserKit/BookmarkStore.h"

#include "KeyloftBrowserKit/AddressInput.h"
#include "KeyloftBrowserKit/BuiltInURL.h"
#include "Platform/Foundation/DiagnosticLog.h"
#include "Platform/Foundation/FileManager.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <string>
#include <utility>

namespace KeyloftBrowserKit {

namespace {

std::vector<Bookmark> load(const Platform::URL& fileURL) {
    try {
        auto bookmarks = Bookmark::decode(Platform::FileManager::defaultManager().contents(fileURL));
        return bookmarks ? *std::move(bookmarks) : BookmarkStore::seed();
    } catch (const Platform::FileError&) {
        // No file is how every first run begins.
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
    , bookmarks_(load(fileURL_)) {
    index_.rebuild(bookmarks_);
}

bool BookmarkStore::contains(const Platform::URL& url) const { return index_.contains(bookmarks_, url); }

void BookmarkStore::add(Bookmark bookmark) {
    if (contains(bookmark.url)) {
        return;
    }
    bookmarks_.push_back(std::move(bookmark));
    index_.append(bookmarks_);
    save();
}

void BookmarkStore::remove(const Platform::URL& url) {
    // A copy is compared with: the caller's URL may well be one of those in the list.
    const auto removed = std::erase_if(
        bookmarks_, [wanted = url](const Bookmark& bookmark) { return bookmark.url == wanted; });
    if (removed > 0) {
        index_.rebuild(bookmarks_);
    }
    save();
}

void BookmarkStore::save() {
    try {
        const auto& files = Platform::FileManager::defaultManager();
        files.createDirectory(fileURL_.deletingLastPathComponent(), true);
        files.writeAtomically(Bookmark::encode(bookmarks_), fileURL_);
    } catch (const Platform::FileError& error) {
        Platform::diagnosticLog("Keyloft: bookmarks save failed: " + error.localizedDescription());
        return;
    }
    Platform::NotificationCenter::defaultCenter().post(didChange, this);
}

void BookmarkStore::Index::rebuild(const std::vector<Bookmark>& bookmarks) {
    static constexpr std::size_t minimumSlots = 16;
    slots_.assign(std::bit_ceil(std::max(minimumSlots, 4 * bookmarks.size())), 0);
    for (std::size_t position = 0; position < bookmarks.size(); ++position) {
        insert(bookmarks, static_cast<Position>(position));
    }
}

void BookmarkStore::Index::append(const std::vector<Bookmark>& bookmarks) {
    if (2 * bookmarks.size() > slots_.size()) {
        rebuild(bookmarks);
    } else {
        insert(bookmarks, static_cast<Position>(bookmarks.size() - 1));
    }
}

bool BookmarkStore::Index::contains(const std::vector<Bookmark>& bookmarks, const Platform::URL& url) const {
    return slots_[slotFor(bookmarks, url)] != 0;
}

void BookmarkStore::Index::insert(const std::vector<Bookmark>& bookmarks, Position position) {
    slots_[slotFor(bookmarks, bookmarks[position].url)] = position + 1;
}

std::size_t BookmarkStore::Index::slotFor(const std::vector<Bookmark>& bookmarks,
                                          const Platform::URL& url) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = std::hash<Platform::URL>()(url) & mask;
    while (slots_[slot] != 0 && bookmarks[slots_[slot] - 1].url != url) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

} // namespace KeyloftBrowserKit
