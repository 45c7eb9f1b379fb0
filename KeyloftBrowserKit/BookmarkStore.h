#pragma once

#include "KeyloftBrowserKit/Bookmark.h"
#include "Platform/Foundation/NotificationCenter.h"
#include "Platform/Foundation/URL.h"

#include <vector>

namespace KeyloftBrowserKit {

/// The ordered list of bookmarks. The list in memory is the truth; after every change it is written whole to
/// its file, so of two stores on one file the one that saves last wins.
///
/// URLs are compared by their exact text. Main thread only, on which `didChange` is posted too.
class BookmarkStore {
public:
    /// Posted on the default centre, with the store as its object, after each save that succeeded.
    static constexpr Platform::NotificationName didChange{"velde.orvane.keyloft.bookmarksDidChange"};

    /// What the list starts with where there is no file, or none that can be read.
    static const std::vector<Bookmark>& seed();

    /// Loads the list. Never fails, writes nothing and posts nothing.
    explicit BookmarkStore(Platform::URL fileURL);
    BookmarkStore(const BookmarkStore&) = delete;
    BookmarkStore& operator=(const BookmarkStore&) = delete;
    ~BookmarkStore() = default;

    /// In display order.
    const std::vector<Bookmark>& bookmarks() const { return bookmarks_; }

    bool contains(const Platform::URL& url) const;

    /// Appends `bookmark` and saves, unless its URL is present already: then nothing changes, the title
    /// neither.
    void add(Bookmark bookmark);

    /// Removes every bookmark with that URL, and saves even if there was none.
    void remove(const Platform::URL& url);

private:
    /// Failure is logged and changes nothing in memory.
    void save();

    Platform::URL fileURL_;
    std::vector<Bookmark> bookmarks_;
};

} // namespace KeyloftBrowserKit
