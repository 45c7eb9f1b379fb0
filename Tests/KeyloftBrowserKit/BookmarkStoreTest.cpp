#include "KeyloftBrowserKit/BookmarkStore.h"

#include "KeyloftBrowserKit/AddressInput.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/PrivateMounts.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

using KeyloftBrowserKit::Bookmark;
using KeyloftBrowserKit::BookmarkStore;
using Platform::Notification;
using Platform::NotificationCenter;
using Platform::URL;
using TestSupport::contentsOf;
using TestSupport::namesIn;
using TestSupport::writeContents;
using List = std::vector<Bookmark>;
using Names = std::set<std::string>;

URL url(std::string_view text) { return TestSupport::present(URL::fromString(text)); }

Bookmark bookmark(std::string_view title, std::string_view text) {
    return {.title = std::string(title), .url = url(text)};
}

const Bookmark one = bookmark("One", "https://one.test/");
const Bookmark two = bookmark("Two", "https://two.test/");

List seedAnd(const Bookmark& more) {
    List list = BookmarkStore::seed();
    list.push_back(more);
    return list;
}

class BookmarkStoreTest : public testing::Test {
protected:
    const fs::path& directory() const { return directory_.path(); }
    std::string path() const { return directory_ / "Library/bookmarks.json"; }
    URL fileURL() const { return URL::fromFilePath(path(), false); }
    BookmarkStore store() const { return BookmarkStore(fileURL()); }

    void write(std::string_view data) const {
        fs::create_directories(fs::path(path()).parent_path());
        writeContents(path(), data);
    }

    /// Runs `action` and returns the objects of the notifications that bookmark stores post while it runs.
    static std::vector<const void*> objectsPostedBy(const std::function<void()>& action) {
        std::vector<const void*> objects;
        const auto observation = NotificationCenter::defaultCenter().addObserver(
            BookmarkStore::didChange, nullptr,
            [&](const Notification& notification) { objects.push_back(notification.object); });
        action();
        return objects;
    }

    static std::string loggedBy(const std::function<void()>& action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }

    /// Adds `one` to `store` and expects the save to fail: the list changes in memory, no notification is
    /// posted, and one line that contains `reason` is logged.
    static void expectUnsavedAdd(BookmarkStore& store, std::string_view reason) {
        List expected = store.bookmarks();
        expected.push_back(one);
        std::vector<const void*> posted;
        const std::string log = loggedBy([&] { posted = objectsPostedBy([&] { store.add(one); }); });
        EXPECT_TRUE(posted.empty());
        EXPECT_EQ(store.bookmarks(), expected);
        EXPECT_TRUE(store.contains(one.url));
        EXPECT_NE(log.find("Keyloft: bookmarks save failed: The "), std::string::npos) << log;
        EXPECT_NE(log.find(reason), std::string::npos) << log;
        EXPECT_EQ(std::ranges::count(log, '\n'), 1) << log;
    }

private:
    TestSupport::TemporaryDirectory directory_;
};

TEST_F(BookmarkStoreTest, theSeedIsTheSixSites) {
    EXPECT_EQ(BookmarkStore::seed(), (List{bookmark("Apple", "https://www.apple.com/"),
                                           bookmark("DuckDuckGo", "https://duckduckgo.com/"),
                                           bookmark("Wikipedia", "https://www.wikipedia.org/"),
                                           bookmark("Hacker News", "https://news.ycombinator.com/"),
                                           bookmark("GitHub", "https://github.com/"),
                                           bookmark("Keyloft", "https://keyloft.orvane.velde/")}));
    EXPECT_EQ(BookmarkStore::seed().at(1).url, KeyloftBrowserKit::AddressInput::searchBase());
}

TEST_F(BookmarkStoreTest, theNotificationHasItsName) {
    EXPECT_EQ(BookmarkStore::didChange.rawValue(), "velde.orvane.keyloft.bookmarksDidChange");
}

TEST_F(BookmarkStoreTest, withoutAFileTheListIsTheSeedAndNothingIsWrittenUntilTheFirstAdd) {
    BookmarkStore store = this->store();
    EXPECT_EQ(store.bookmarks(), BookmarkStore::seed());
    EXPECT_TRUE(namesIn(directory()).empty());
    store.add(one);
    EXPECT_EQ(this->store().bookmarks(), seedAnd(one));
}

TEST_F(BookmarkStoreTest, withoutAFileTheFirstRemoveWritesIt) {
    BookmarkStore store = this->store();
    store.remove(url("https://www.apple.com/"));
    EXPECT_EQ(store.bookmarks().size(), 5U);
    EXPECT_EQ(this->store().bookmarks(), store.bookmarks());
}

TEST_F(BookmarkStoreTest, constructionPostsNothing) {
    EXPECT_TRUE(objectsPostedBy([&] { store(); }).empty());
    write("[]");
    EXPECT_TRUE(objectsPostedBy([&] { store(); }).empty());
    EXPECT_EQ(contentsOf(path()), "[]");
}

TEST_F(BookmarkStoreTest, anEmptyListInTheFileStaysEmpty) {
    write("[]");
    EXPECT_TRUE(store().bookmarks().empty());
    EXPECT_FALSE(store().contains(url("https://www.apple.com/")));
}

TEST_F(BookmarkStoreTest, anObjectWithoutURLMeansTheSeed) {
    write(R"([{"title":"x"}])");
    EXPECT_EQ(store().bookmarks(), BookmarkStore::seed());
}

TEST_F(BookmarkStoreTest, duplicatesInTheFileAreKept) {
    write(R"([{"title":"a","url":"https://x.test/"},{"title":"b","url":"https://x.test/"}])");
    BookmarkStore store = this->store();
    EXPECT_EQ(store.bookmarks(), (List{bookmark("a", "https://x.test/"), bookmark("b", "https://x.test/")}));
    EXPECT_TRUE(store.contains(url("https://x.test/")));
    store.add(one);
    EXPECT_EQ(this->store().bookmarks().size(), 3U);
    store.remove(url("https://x.test/"));
    EXPECT_EQ(store.bookmarks(), List{one});
    EXPECT_FALSE(store.contains(url("https://x.test/")));
}

TEST_F(BookmarkStoreTest, addingAppendsSavesAndPostsWithTheStoreAsObject) {
    BookmarkStore store = this->store();
    const auto posted = objectsPostedBy([&] {
        store.add(one);
        store.add(two);
    });
    EXPECT_EQ(posted, (std::vector<const void*>{&store, &store}));
    EXPECT_EQ(store.bookmarks().at(6), one);
    EXPECT_EQ(store.bookmarks().at(7), two);
    EXPECT_EQ(this->store().bookmarks(), store.bookmarks());
}

TEST_F(BookmarkStoreTest, theFileIsSavedWhenTheNotificationArrives) {
    BookmarkStore store = this->store();
    List seen;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        BookmarkStore::didChange, &store, [&](const Notification&) { seen = this->store().bookmarks(); });
    store.add(one);
    EXPECT_EQ(seen, seedAnd(one));
}

TEST_F(BookmarkStoreTest, anObserverMayChangeTheStore) {
    BookmarkStore store = this->store();
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        BookmarkStore::didChange, &store, [&](const Notification&) { store.add(two); });
    store.add(one);
    EXPECT_EQ(this->store().bookmarks(), store.bookmarks());
    EXPECT_EQ(store.bookmarks().size(), 8U);
}

TEST_F(BookmarkStoreTest, addingAPresentURLChangesNothing) {
    BookmarkStore store = this->store();
    const auto posted =
        objectsPostedBy([&] { store.add(bookmark("Another title", "https://www.apple.com/")); });
    EXPECT_TRUE(posted.empty());
    EXPECT_EQ(store.bookmarks(), BookmarkStore::seed());
    EXPECT_TRUE(namesIn(directory()).empty());
}

TEST_F(BookmarkStoreTest, urlsAreComparedExactly) {
    write("[]");
    BookmarkStore store = this->store();
    const std::vector<std::string_view> distinct = {
        "https://x.test",    "https://x.test/",     "https://X.test/",    "HTTPS://x.test/",
        "https://x.test/#f", "https://x.test:443/", "https://x.test/%41", "https://x.test/A"};
    for (const auto text : distinct) {
        EXPECT_FALSE(store.contains(url(text))) << text;
        store.add(bookmark("x", text));
        EXPECT_TRUE(store.contains(url(text))) << text;
    }
    EXPECT_EQ(store.bookmarks().size(), distinct.size());
}

TEST_F(BookmarkStoreTest, removingKeepsTheOrderOfTheOthers) {
    BookmarkStore store = this->store();
    store.remove(url("https://www.wikipedia.org/"));
    List expected = BookmarkStore::seed();
    expected.erase(expected.begin() + 2);
    EXPECT_EQ(store.bookmarks(), expected);
    for (const Bookmark& left : expected) {
        EXPECT_TRUE(store.contains(left.url));
    }
    EXPECT_FALSE(store.contains(url("https://www.wikipedia.org/")));
}

TEST_F(BookmarkStoreTest, removingByAReferenceIntoTheListRemovesThatURL) {
    write(R"([{"title":"a","url":"https://x.test/"},{"title":"b","url":"https://y.test/"},)"
          R"({"title":"c","url":"https://x.test/"}])");
    BookmarkStore store = this->store();
    store.remove(store.bookmarks().front().url);
    EXPECT_EQ(store.bookmarks(), List{bookmark("b", "https://y.test/")});
}

TEST_F(BookmarkStoreTest, removingWhatIsNotThereStillWritesAndPosts) {
    BookmarkStore store = this->store();
    const auto posted = objectsPostedBy([&] { store.remove(url("https://absent.test/")); });
    EXPECT_EQ(posted, std::vector<const void*>{&store});
    EXPECT_EQ(contentsOf(path()), Bookmark::encode(BookmarkStore::seed()));
}

TEST_F(BookmarkStoreTest, removingAllWritesAnEmptyList) {
    BookmarkStore store = this->store();
    for (const Bookmark& each : BookmarkStore::seed()) {
        store.remove(each.url);
    }
    EXPECT_EQ(contentsOf(path()), "[\n\n]");
    EXPECT_TRUE(this->store().bookmarks().empty());
}

TEST_F(BookmarkStoreTest, aSavedFileReadBackYieldsAnEqualList) {
    BookmarkStore store = this->store();
    store.add(bookmark("\"quoted\" / \\ \n 日本 🦊", "https://日本.example/a b?c=%zz"));
    store.add(bookmark("", "about:blank"));
    EXPECT_EQ(this->store().bookmarks(), store.bookmarks());
    EXPECT_EQ(namesIn(fs::path(path()).parent_path()), Names{"bookmarks.json"});
}

TEST_F(BookmarkStoreTest, malformedFilesMeanTheSeedAndStayUntilTheNextSave) {
    for (const std::string_view bad :
         {"", "[", "not json", "{\"title\":1}", "[{\"title\":\"\xff\",\"url\":\"a\"}]"}) {
        write(bad);
        BookmarkStore store = this->store();
        EXPECT_EQ(store.bookmarks(), BookmarkStore::seed());
        EXPECT_EQ(contentsOf(path()), bad);
        store.add(one);
        EXPECT_EQ(this->store().bookmarks(), seedAnd(one));
    }
}

TEST_F(BookmarkStoreTest, aDirectoryInTheFilesPlaceMeansTheSeedAndUnsavedChanges) {
    fs::create_directories(path());
    BookmarkStore store = this->store();
    EXPECT_EQ(store.bookmarks(), BookmarkStore::seed());
    expectUnsavedAdd(store, "Is a directory");
    EXPECT_TRUE(fs::is_directory(path()));
    EXPECT_EQ(namesIn(fs::path(path()).parent_path()), Names{"bookmarks.json"});
    // The next successful save posts one notification for all changes.
    fs::remove(path());
    EXPECT_EQ(objectsPostedBy([&] { store.add(two); }), std::vector<const void*>{&store});
    EXPECT_EQ(this->store().bookmarks(), store.bookmarks());
    EXPECT_EQ(store.bookmarks().size(), 8U);
}

TEST_F(BookmarkStoreTest, aDirectoryThatCannotBeCreatedMeansUnsavedChanges) {
    writeContents(directory() / "Library", "a file");
    BookmarkStore store = this->store();
    expectUnsavedAdd(store,
                     "The directory \"" + (directory() / "Library").string() + "\" could not be created");
    EXPECT_EQ(contentsOf(directory() / "Library"), "a file");
}

TEST_F(BookmarkStoreTest, aFailedRemoveKeepsTheChangeToo) {
    writeContents(directory() / "Library", "a file");
    BookmarkStore store = this->store();
    const std::string log = loggedBy(
        [&] { EXPECT_TRUE(objectsPostedBy([&] { store.remove(url("https://www.apple.com/")); }).empty()); });
    EXPECT_NE(log.find("Keyloft: bookmarks save failed: "), std::string::npos);
    EXPECT_EQ(store.bookmarks().size(), 5U);
}

TEST_F(BookmarkStoreTest, aPipeInTheFilesPlaceMeansTheSeedUntilTheNextSave) {
    fs::create_directories(fs::path(path()).parent_path());
    ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
    BookmarkStore store = this->store();
    EXPECT_EQ(store.bookmarks(), BookmarkStore::seed());
    EXPECT_TRUE(fs::is_fifo(path()));
    store.add(one);
    EXPECT_EQ(this->store().bookmarks(), seedAnd(one));
}

TEST_F(BookmarkStoreTest, aLoopOfLinksMeansTheSeedAndUnsavedChanges) {
    fs::create_directories(fs::path(path()).parent_path());
    fs::create_symlink("bookmarks.json", path());
    BookmarkStore store = this->store();
    EXPECT_EQ(store.bookmarks(), BookmarkStore::seed());
    expectUnsavedAdd(store, "Too many levels of symbolic links");
    EXPECT_TRUE(fs::is_symlink(path()));
}

TEST_F(BookmarkStoreTest, aLinkedFileIsReadAndWrittenThroughTheLink) {
    writeContents(directory() / "elsewhere.json", "[]");
    fs::create_directories(fs::path(path()).parent_path());
    fs::create_symlink("../elsewhere.json", path());
    BookmarkStore store = this->store();
    EXPECT_TRUE(store.bookmarks().empty());
    store.add(one);
    EXPECT_TRUE(fs::is_symlink(path()));
    EXPECT_EQ(contentsOf(directory() / "elsewhere.json"), Bookmark::encode(List{one}));
}

TEST_F(BookmarkStoreTest, aFullDiskLeavesTheOldFile) {
    fs::create_directories(fs::path(path()).parent_path());
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        const std::string disk = fs::path(path()).parent_path().string();
        TestSupport::mountSmallDisk(disk, 65536);
        writeContents(path(), "[]");
        TestSupport::fillDisk(disk);
        BookmarkStore store = this->store();
        expectUnsavedAdd(store, "No space left on device");
        EXPECT_EQ(contentsOf(path()), "[]");
        EXPECT_EQ(namesIn(disk), (Names{"bookmarks.json", "filler"}));
        fs::remove(fs::path(disk) / "filler");
        EXPECT_EQ(objectsPostedBy([&] { store.add(two); }), std::vector<const void*>{&store});
        EXPECT_EQ(this->store().bookmarks(), (List{one, two}));
    });
}

TEST_F(BookmarkStoreTest, aReadOnlyDiskLeavesTheOldFile) {
    fs::create_directories(fs::path(path()).parent_path());
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        const std::string disk = fs::path(path()).parent_path().string();
        TestSupport::mountSmallDisk(disk, 65536);
        writeContents(path(), "[]");
        TestSupport::makeReadOnly(disk);
        BookmarkStore store = this->store();
        expectUnsavedAdd(store, "Read-only file system");
        EXPECT_EQ(contentsOf(path()), "[]");
        EXPECT_EQ(namesIn(disk), Names{"bookmarks.json"});
    });
}

TEST_F(BookmarkStoreTest, ofTwoStoresTheOneThatSavesLastWinsWhole) {
    write("[]");
    BookmarkStore first = store();
    BookmarkStore second = store();
    first.add(one);
    second.add(two);
    EXPECT_EQ(store().bookmarks(), List{two});
    first.remove(url("https://absent.test/"));
    EXPECT_EQ(store().bookmarks(), List{one});
}

TEST_F(BookmarkStoreTest, observersOfAnotherStoreHearNothing) {
    BookmarkStore first = store();
    BookmarkStore second = store();
    int calls = 0;
    const auto observation = NotificationCenter::defaultCenter().addObserver(
        BookmarkStore::didChange, &second, [&](const Notification&) { ++calls; });
    first.add(one);
    EXPECT_EQ(calls, 0);
    second.add(one);
    EXPECT_EQ(calls, 1);
}

TEST_F(BookmarkStoreTest, aFileNamedRelativelyIsWrittenBesideTheProgram) {
    const fs::path previous = fs::current_path();
    fs::current_path(directory());
    BookmarkStore store(URL::fromFilePath("bookmarks.json", false));
    store.add(one);
    fs::current_path(previous);
    EXPECT_EQ(contentsOf(directory() / "bookmarks.json"), Bookmark::encode(seedAnd(one)));
}

/// A list of `count` bookmarks, each about as large as a real bookmark.
List largeList(std::size_t count) {
    List list;
    list.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        list.push_back(
            bookmark("Bookmark number " + std::to_string(i),
                     "https://host" + std::to_string(i % 1000) + ".test/path/" + std::to_string(i)));
    }
    return list;
}

TEST_F(BookmarkStoreTest, keepsTheOrderOfALargeListThatChanges) {
    const List list = largeList(100'000);
    write(Bookmark::encode(list));
    BookmarkStore store = this->store();
    ASSERT_EQ(store.bookmarks(), list);
    EXPECT_TRUE(store.contains(list[99'999].url));
    EXPECT_FALSE(store.contains(url("https://absent.test/")));
    store.remove(list[50'000].url);
    EXPECT_FALSE(store.contains(list[50'000].url));
    EXPECT_TRUE(store.contains(list[50'001].url));
    store.add(list[50'000]);
    EXPECT_EQ(store.bookmarks().back(), list[50'000]);
    EXPECT_EQ(store.bookmarks().size(), list.size());
}

TEST_F(BookmarkStoreTest, addsEachURLOnce) {
    write("[]");
    BookmarkStore store = this->store();
    const List list = largeList(200);
    for (const Bookmark& each : list) {
        store.add(each);
        store.add(each);
    }
    EXPECT_EQ(store.bookmarks(), list);
}

TEST_F(BookmarkStoreTest, aFileOfFiftyMegabytesIsLoadedAndSaved) {
    const std::string text = Bookmark::encode(largeList(520'000));
    ASSERT_GE(text.size(), 50'000'000U);
    write(text);
    BookmarkStore store = this->store();
    EXPECT_EQ(store.bookmarks().size(), 520'000U);
    store.add(one);
    EXPECT_EQ(this->store().bookmarks().size(), 520'001U);
}

TEST_F(BookmarkStoreTest, invalidFilesOfFiveMegabytesMeanTheSeed) {
    static constexpr std::size_t size = 5'000'000;
    std::string almost = Bookmark::encode(largeList(52'000));
    almost.pop_back();
    std::string arrays = R"([{"title":"t","url":"u","x":[)";
    while (arrays.size() < size) {
        arrays += "[],";
    }
    const auto expectSeed = [&](const std::string& text) {
        write(text);
        EXPECT_EQ(store().bookmarks(), BookmarkStore::seed()) << text.substr(0, 10);
    };
    expectSeed(almost);
    expectSeed(arrays);
    expectSeed(std::string(size, '['));
    expectSeed("[\"" + std::string(size, 'x'));
    expectSeed('[' + std::string(size, '1') + ']');
}

} // namespace
