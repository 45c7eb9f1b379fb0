#pragma once

#include "KeyloftBrowserKit/Bookmark.h"
#include "Platform/Foundation/NotificationCenter.h"
#include "Platform/Foundation/URL.h"

#include <vector>

namespace KeyloftBrowserKit {

/// The ordered list of bookmarks, kept in memory and saved to a file. Every change rewrites the whole file.
/// If two stores use the same file, the last save wins.
///
/// Compares URLs by their exact text. Main thread only; posts `didChange` there, too.
class BookmarkStore {
public:
    /// Posted to the default notification centre, with the store as its object, after each successful save.
    static constexpr Platform::NotificationName didChange{"velde.orvane.keyloft.bookmarksDidChange"};

    /// The initial list if the file does not exist or cannot be read or decoded.
    static const std::vector<Bookmark>& seed();

    /// Loads the list. Never fails; writes and posts nothing.
    explicit BookmarkStore(Platform::URL fileURL);
    BookmarkStore(const BookmarkStore&) = delete;
    BookmarkStore& operator=(const BookmarkStore&) = delete;
    ~BookmarkStore() = default;

    /// The bookmarks in display order.
    const std::vector<Bookmark>& bookmarks() const { return bookmarks_; }

    bool contains(const Platform::URL& url) const;

    /// Appends `bookmark` and saves. Does nothing if its URL is already present, even if the title differs.
    void add(Bookmark bookmark);

    /// Removes every bookmark with that URL. Saves even if there is no such bookmark.
    void remove(const Platform::URL& url);

private:
    /// Writes the file and posts `didChange`. Logs a failure and keeps the list in memory.
    void save();

    Platform::URL fileURL_;
    std::vector<Bookmark> bookmarks_;
};

} // namespace KeyloftBrowserKit
