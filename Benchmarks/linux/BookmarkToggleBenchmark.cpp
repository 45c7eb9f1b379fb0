#include "Keyloft/AppDelegate.h"
#include "Platform/AppKit/Application.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Measures how long user actions prevent the main loop from handling input. Prints the times without checking
// them, because they can be arbitrarily long on a loaded machine.

namespace {

using Keyloft::AppDelegate;
using KeyloftBrowserKit::Bookmark;
using Platform::Application;
using Platform::URL;
using Tab = std::shared_ptr<Keyloft::BrowserWindowController>;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::size_t repetitions = 15;

/// Returns the CPU time used by the main thread. Unlike the elapsed time, it excludes the time that the
/// thread waits for a CPU.
Milliseconds workedSoFar() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

struct Turn {
    Milliseconds elapsed{0};
    Milliseconds worked{0};
};

/// Calls `action` and then runs the main loop for a fixed time, so that the effects of the action settle.
/// Returns the maximum elapsed time and the maximum CPU time between two checks for input.
Turn longestTurn(const std::function<void()>& action) {
    constexpr auto settling = std::chrono::milliseconds(400);
    const auto begun = std::chrono::steady_clock::now();
    auto turn = begun;
    auto worked = workedSoFar();
    Turn longest;
    const auto endTurn = [&] {
        const auto now = std::chrono::steady_clock::now();
        const auto workedNow = workedSoFar();
        longest.elapsed = std::max<Milliseconds>(longest.elapsed, now - turn);
        longest.worked = std::max(longest.worked, workedNow - worked);
        turn = now;
        worked = workedNow;
    };
    action();
    endTurn();
    while (turn - begun < settling) {
        g_main_context_iteration(nullptr, FALSE);
        endTurn();
    }
    return longest;
}

double medianOf(const std::vector<Turn>& turns, Milliseconds Turn::* time, double& greatest) {
    std::vector<double> times;
    times.reserve(turns.size());
    for (const Turn& turn : turns) {
        times.push_back((turn.*time).count());
    }
    std::ranges::sort(times);
    greatest = times.back();
    return times[times.size() / 2];
}

/// Prints the medians and maxima of several measurements. Returns the median CPU time.
double report(const char* what, const std::vector<Turn>& turns) {
    double greatestElapsed = 0;
    double greatestWorked = 0;
    const double elapsed = medianOf(turns, &Turn::elapsed, greatestElapsed);
    const double worked = medianOf(turns, &Turn::worked, greatestWorked);
    std::printf("%-46s elapsed %6.1f (at most %6.1f) ms, worked %6.1f (at most %6.1f) ms\n", what, elapsed,
                greatestElapsed, worked, greatestWorked);
    return worked;
}

/// A browser window with the given numbers of bookmarks and tabs. The last tab is selected and displays a
/// page.
class Browser {
public:
    Browser(int bookmarkCount, int tabCount) {
        std::vector<Bookmark> bookmarks;
        for (int i = 0; i < bookmarkCount; ++i) {
            const std::string number = std::to_string(i);
            bookmarks.push_back({"A bookmark " + number,
                                 TestSupport::present(URL::fromString("https://page.test/" + number))});
        }
        const std::filesystem::path file = AppDelegate::bookmarksFile().filePath();
        std::filesystem::create_directories(file.parent_path());
        TestSupport::writeContents(file, Bookmark::encode(bookmarks));

        Application::shared().prepare();
        delegate_ = AppDelegate::create();
        Application::shared().setDelegate(delegate_);
        delegate_->applicationWillFinishLaunching();
        delegate_->applicationDidFinishLaunching();
        for (int i = 1; i < tabCount; ++i) {
            delegate_->openTab(std::nullopt, delegate_->frontBrowserWindow(), nullptr);
            TestSupport::runPending();
        }
        TestSupport::activate(*tab()->window());
        tab()->load(TestSupport::present(URL::fromString("data:text/html,<title>Page</title>")));
        EXPECT_TRUE(TestSupport::runUntil([this] { return tab()->webView()->title() == "Page"; }));
        TestSupport::waitForLayout(*tab()->window());
    }
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;
    ~Browser() {
        const auto tabs = delegate_->controllers();
        for (const auto& tab : tabs) {
            tab->window()->close();
        }
        Application::shared().setMainMenu(nullptr);
        TestSupport::runPending();
    }

    const Tab& tab() const { return delegate_->controllers().back(); }

private:
    std::shared_ptr<AppDelegate> delegate_;
};

double measureToggle(const char* what, int bookmarkCount, int tabCount) {
    const Browser browser(bookmarkCount, tabCount);
    std::vector<Turn> turns(repetitions);
    for (Turn& turn : turns) {
        turn = longestTurn([&] { browser.tab()->toggleBookmark(); });
    }
    return report(what, turns);
}

} // namespace

TEST(BookmarkToggleBenchmark, toggling) {
    const double floor = measureToggle("a bookmark toggled, no bookmarks in 1 tab", 0, 1);
    const double full = measureToggle("a bookmark toggled, 300 bookmarks in 20 tabs", 300, 20);
    std::printf("%-46s %.1f\n", "ratio", full / floor);
}

TEST(BookmarkToggleBenchmark, changingTabs) {
    const Browser browser(300, 20);
    std::vector<Turn> turns(repetitions);
    for (Turn& turn : turns) {
        turn = longestTurn([] { sendAction(Platform::StandardAction::selectNextTab, nullptr, {}); });
    }
    report("the next tab selected, 300 bookmarks in 20 tabs", turns);
}

TEST(BookmarkToggleBenchmark, typing) {
    const Browser browser(300, 20);
    browser.tab()->focusAddressBar();
    std::vector<Turn> turns(repetitions);
    for (Turn& turn : turns) {
        turn = longestTurn([] { g_spawn_command_line_async("xdotool type --delay 20 letters", nullptr); });
    }
    report("letters typed, 300 bookmarks in 20 tabs", turns);
}
