#include "KeyloftBrowserKit/BookmarkStore.h"
#include "Platform/Foundation/NotificationCenter.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/PrivateMounts.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

// Kills processes while they save bookmarks. The environment variable KEYLOFT_KILLS sets the number of kills.

namespace {

namespace fs = std::filesystem;

using KeyloftBrowserKit::Bookmark;
using KeyloftBrowserKit::BookmarkStore;
using Platform::Notification;
using Platform::NotificationCenter;
using Platform::URL;
using Clock = std::chrono::steady_clock;
using List = std::vector<Bookmark>;
using Names = std::set<std::string>;

/// Counts the saves of a child process, starting from 1. Allocated in memory that the child process shares
/// with the test.
struct Progress {
    std::atomic<int> begun = 0;
    /// The number of the last save that posted its notification.
    std::atomic<int> posted = 0;
    std::atomic<int> ended = 0;
};

class SharedProgress {
public:
    SharedProgress()
        : memory_(
              mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (memory_ == MAP_FAILED) {
            throw std::bad_alloc();
        }
        std::construct_at(static_cast<Progress*>(memory_));
    }
    SharedProgress(const SharedProgress&) = delete;
    SharedProgress& operator=(const SharedProgress&) = delete;
    ~SharedProgress() { munmap(memory_, sizeof(Progress)); }

    Progress& operator*() const { return *static_cast<Progress*>(memory_); }
    Progress* operator->() const { return static_cast<Progress*>(memory_); }

private:
    void* memory_;
};

/// A bookmark with a long title. The title makes the list slow to write, but not slow to parse.
Bookmark numbered(int number) {
    const std::string text = std::to_string(number);
    return {.title = "Bookmark " + text + std::string(1000, '.'),
            .url = TestSupport::present(URL::fromString("https://host.test/" + text))};
}

List listOf(int count) {
    List list;
    for (int i = 0; i < count; ++i) {
        list.push_back(numbered(i));
    }
    return list;
}

/// The bookmark that save `number` adds or removes.
Bookmark changedBy(int number) {
    static constexpr int changing = 10;
    return numbered(1000 + (number % changing));
}

/// Returns `list` with the changes of saves 1 to `count` applied.
List after(int count, List list) {
    for (int number = 1; number <= count; ++number) {
        const Bookmark bookmark = changedBy(number);
        if (std::erase(list, bookmark) == 0) {
            list.push_back(bookmark);
        }
    }
    return list;
}

class BookmarkStoreKillTest : public testing::Test {
protected:
    BookmarkStoreKillTest() { fs::create_directory(folder()); }

    fs::path folder() const { return directory_.path() / "folder"; }
    URL file() const { return URL::fromFilePath((folder() / "bookmarks.json").string(), false); }
    List saved() const { return BookmarkStore(file()).bookmarks(); }

    void write(const List& list) const {
        TestSupport::writeContents(file().filePath(), Bookmark::encode(list));
    }

    /// Repeatedly changes and saves the list until the process is killed.
    [[noreturn]] void saveForever(const SharedProgress& progress) const {
        alarm(60); // Ends the process if the test does not kill it.
        BookmarkStore store(file());
        const auto observation = NotificationCenter::defaultCenter().addObserver(
            BookmarkStore::didChange, &store,
            [&](const Notification&) { progress->posted = progress->begun.load(); });
        while (true) {
            const Bookmark bookmark = changedBy(++progress->begun);
            if (store.contains(bookmark.url)) {
                store.remove(bookmark.url);
            } else {
                store.add(bookmark);
            }
            ++progress->ended;
        }
    }

    /// Kills `count` processes one after another while they save, each at a random moment within `period`
    /// after it has started its first save. After each kill, checks the file and the directory.
    void killWhileSaving(int count, std::chrono::microseconds period) {
        std::uniform_int_distribution<std::chrono::microseconds::rep> moments(0, period.count());
        for (int i = 0; i < count && !HasFailure(); ++i) {
            const SharedProgress progress;
            const List old = saved();
            const pid_t process = fork();
            ASSERT_GE(process, 0);
            if (process == 0) {
                saveForever(progress);
            }
            EXPECT_TRUE(TestSupport::eventually([&] { return progress->begun > 0; }));
            std::this_thread::sleep_for(std::chrono::microseconds(moments(random_)));
            ASSERT_EQ(kill(process, SIGKILL), 0);
            int status = 0;
            ASSERT_EQ(waitpid(process, &status, 0), process);
            ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
            expectOldOrNew(old, *progress);
        }
        std::cout << count << " kills: " << whileSaving_ << " during a save, " << withTemporaryFile_
                  << " left a temporary file, " << withNewList_
                  << " left the new list before its save ended\n";
        EXPECT_GT(whileSaving_, 0);
        EXPECT_GT(withTemporaryFile_, 0);
    }

    void expectOldOrNew(const List& before, const Progress& progress) {
        const List list = saved();
        const List old = after(progress.posted, before);
        const bool isSaving = progress.begun != progress.ended;
        if (isSaving && list == after(progress.begun, before)) {
            withNewList_ += progress.posted != progress.begun ? 1 : 0;
        } else {
            EXPECT_TRUE(list == old) << list.size() << " bookmarks, not " << old.size() << ", after save "
                                     << progress.posted << "; save " << progress.begun << " had begun";
        }
        Names names = TestSupport::namesIn(folder());
        EXPECT_EQ(names.erase("bookmarks.json"), 1U);
        EXPECT_LE(names.size(), 1U) << testing::PrintToString(names);
        whileSaving_ += isSaving ? 1 : 0;
        withTemporaryFile_ += names.empty() ? 0 : 1;
    }

    /// Returns the average duration of a save.
    std::chrono::microseconds saveDuration() const {
        static constexpr int saves = 20;
        const Clock::time_point begun = Clock::now();
        for (int i = 0; i < saves; ++i) {
            BookmarkStore(file()).remove(numbered(-1).url);
        }
        return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begun) / saves;
    }

    /// Saves once more and expects that no temporary file is left.
    void expectNothingElseAfterASave() const {
        BookmarkStore(file()).remove(numbered(0).url);
        EXPECT_EQ(TestSupport::namesIn(folder()), Names{"bookmarks.json"});
        EXPECT_FALSE(BookmarkStore(file()).contains(numbered(0).url));
    }

private:
    TestSupport::TemporaryDirectory directory_;
    // A fixed seed makes the test repeatable. NOLINTNEXTLINE(bugprone-random-generator-seed)
    std::mt19937 random_{20261123};
    int whileSaving_ = 0;
    int withTemporaryFile_ = 0;
    int withNewList_ = 0;
};

} // namespace

TEST_F(BookmarkStoreKillTest, aKillDuringASaveLeavesTheOldOrTheNewList) {
    const char* kills = std::getenv("KEYLOFT_KILLS");
    write(listOf(50));
    killWhileSaving(kills == nullptr ? 100 : std::stoi(kills), 2 * saveDuration());
    expectNothingElseAfterASave();
}

TEST_F(BookmarkStoreKillTest, killsDuringSavesDoNotFillASmallDisk) {
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        const List list = listOf(50);
        const auto size = static_cast<int>(Bookmark::encode(list).size());
        // The disk can hold the old and the new list, but not an additional temporary file of a killed
        // process.
        TestSupport::mountSmallDisk(folder().string(), size * 5 / 2);
        write(list);
        killWhileSaving(100, 2 * saveDuration());
        expectNothingElseAfterASave();
    });
}

TEST_F(BookmarkStoreKillTest, anAlmostFullDiskHasTheOldOrTheNewList) {
    KEYLOFT_IN_PRIVATE_MOUNTS([&] {
        static constexpr std::size_t page = 4096;
        const List old = listOf(30);
        const std::size_t pages = (Bookmark::encode(old).size() / page) + 1;
        TestSupport::mountSmallDisk(folder().string(), static_cast<int>(3 * pages * page));
        std::size_t failures = 0;
        for (std::size_t filled = 0; filled < 2 * pages; ++filled) {
            write(old);
            TestSupport::writeContents(folder() / "filler", std::string(filled * page, 'x'));
            BookmarkStore store(file());
            bool isPosted = false;
            const auto observation = NotificationCenter::defaultCenter().addObserver(
                BookmarkStore::didChange, &store, [&](const Notification&) { isPosted = true; });
            testing::internal::CaptureStderr();
            store.add(numbered(1000));
            const std::string log = testing::internal::GetCapturedStderr();
            EXPECT_EQ(log.find("No space left on device") == std::string::npos, isPosted) << log;
            EXPECT_EQ(saved(), isPosted ? store.bookmarks() : old);
            EXPECT_EQ(TestSupport::namesIn(folder()), (Names{"bookmarks.json", "filler"}));
            failures += isPosted ? 0 : 1;
        }
        // The save fails if fewer than `pages` pages are free for the new list.
        EXPECT_GE(failures, pages - 1);
        EXPECT_LE(failures, pages + 1);
    });
}
