#pragma once

#include "KeyloftBrowserKit/Bookmark.h"
#include "Platform/Foundation/NotificationCenter.h"
#include "Platform/Foundation/URL.h"

#include <vector>

namespace KeyloftBrowserKit {

/// The ordered list of bookmarks, kept in memory and saved to a file. Every change rewrites the whole file.
/// If two stores use the same file, the last save wins.
///
/// URLs are compared as strings, without normalization. Main thread only; `didChange` is also posted on the
/// main thread.
class BookmarkStore {
public:
    /// Posted to the default notification center after each successful save. The notification's object is the
    /// store.
    static constexpr Platform::NotificationName didChange{"velde.orvane.keyloft.bookmarksDidChange"};

    /// The default bookmarks, which are used if the file does not exist or cannot be read or decoded.
    static const std::vector<Bookmark>& seed();

    /// Loads the bookmarks from the file. Never fails. Neither writes the file nor posts a notification.
    explicit BookmarkStore(Platform::URL fileURL);
    BookmarkStore(const BookmarkStore&) = delete;
    BookmarkStore& operator=(const BookmarkStore&) = delete;
    ~BookmarkStore() = default;

    /// The bookmarks in display order.
    const std::vector<Bookmark>& bookmarks() const { return bookmarks_; }

    bool contains(const Platform::URL& url) const;

    /// Appends `bookmark` and saves. Does nothing if the URL is already bookmarked, even with a different
    /// title.
    void add(Bookmark bookmark);

    /// Removes all bookmarks with this URL. Saves even if nothing is removed.
    void remove(const Platform::URL& url);

private:
    /// Writes the file and posts `didChange`. If writing fails, logs the error and keeps the changes in
    /// memory only.
    void save();

    Platform::URL fileURL_;
    std::vector<Bookmark> bookmarks_;
};

} // namespace KeyloftBrowserKit
