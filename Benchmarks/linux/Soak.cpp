#include "Keyloft/AppDelegate.h"
#include "Platform/AppKit/Application.h"
#include "Platform/POSIX/Descriptor.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/ProcessCounts.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/WebProcesses.h"
#include "Tests/Support/linux/MainLoop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

// Exercises the browser for a long time in one process, and fails if the process ends up with more memory,
// file descriptors, threads or child processes than after a short warm-up:
//
//   Soak [PERCENT]
//
// PERCENT scales the amount of work (default: 100). After each phase, closes all tabs except a blank one
// and prints the resources in use.

namespace {

using Keyloft::AppDelegate;
using Platform::Application;
using Platform::URL;
using TestSupport::HTTPRequest;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;
using Clock = std::chrono::steady_clock;
using Tab = std::shared_ptr<Keyloft::BrowserWindowController>;

/// A web server that runs in a separate process, because the requests that it keeps in memory would otherwise
/// count as memory of the browser. The title of each page is the query of its URL.
class ServerProcess {
public:
    ServerProcess() {
        auto [parentEnd, lifeline] = connectedPipe();
        auto [portReader, portWriter] = connectedPipe();
        const pid_t process = fork();
        if (process < 0) {
            throw std::system_error(errno, std::generic_category(), "fork");
        }
        if (process == 0) {
            lifeline.close();
            serve(parentEnd.get(), portWriter.get());
        }
        portWriter.close();
        if (read(portReader.get(), &port_, sizeof port_) != sizeof port_) {
            throw std::runtime_error("the server did not start");
        }
        lifeline_ = std::move(lifeline);
    }

    URL url(const std::string& query) const {
        return TestSupport::present(
            URL::fromString("http://127.0.0.1:" + std::to_string(port_) + "/page?" + query));
    }

private:
    /// Returns the read end and the write end of a new pipe.
    static std::pair<Platform::Descriptor, Platform::Descriptor> connectedPipe() {
        std::array<int, 2> ends = {};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe2");
        }
        return {Platform::Descriptor(ends[0]), Platform::Descriptor(ends[1])};
    }

    [[noreturn]] static void serve(int parentEnd, int portWriter) {
        TestSupport::HTTPServer server;
        server.route("/page", [](const HTTPRequest& request) {
            std::string body = "<title>" + request.query + "</title>";
            for (int i = 0; i < 100; ++i) {
                body += "<p>A paragraph with <a href='/page?" + std::to_string(i) + "'>a link</a>.</p>";
            }
            return HTTPResponse::html(body);
        });
        const int port = server.port();
        char ignored = 0;
        // `read` returns 0 when the parent process exits.
        const bool isServed =
            write(portWriter, &port, sizeof port) == sizeof port && read(parentEnd, &ignored, 1) == 0;
        _exit(isServed ? EXIT_SUCCESS : EXIT_FAILURE);
    }

    /// The server exits when this descriptor is closed.
    Platform::Descriptor lifeline_;
    int port_ = 0;
};

/// The resources that this process uses.
struct Usage {
    /// Memory in MiB. `proportional` is the proportional set size. `own` excludes mapped files,
    /// because the share of a mapped file depends on the number of processes that map it.
    double proportional = 0;
    double own = 0;
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    /// The number of threads that WebKitGTK has leaked. `threads` does not include these threads, and
    /// `descriptors` does not include their file descriptors.
    std::size_t leakedThreads = 0;
    std::size_t children = 0;
};

/// Returns the number of child processes, including zombies.
std::size_t childProcesses() {
    std::size_t count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(task.path() / "children");
        for (pid_t process = 0; children >> process;) {
            ++count;
        }
    }
    return count;
}

Usage usage() {
    // If a view is destroyed while its web process is starting, WebKitGTK 2.50.6 leaks the thread that
    // receives messages from the process, and one file descriptor. This also happens with a plain web view
    // (not reported).
    const std::size_t leaked = TestSupport::runningThreads("ReceiveQueue");
    Usage result{.descriptors = TestSupport::openDescriptors() - leaked,
                 .threads = TestSupport::runningThreads() - leaked,
                 .leakedThreads = leaked,
                 .children = childProcesses()};
    std::ifstream memory("/proc/self/smaps_rollup");
    for (std::string line; std::getline(memory, line);) {
        std::istringstream words(line);
        std::string name;
        double kibibytes = 0;
        words >> name >> kibibytes;
        if (name == "Pss:") {
            result.proportional = kibibytes / 1024;
        } else if (name == "Pss_Anon:" || name == "Pss_Shmem:") {
            result.own += kibibytes / 1024;
        }
    }
    return result;
}

/// The permitted increases in resource use since the end of the warm-up.
constexpr double memoryMargin = 16; // MiB
constexpr std::size_t descriptorMargin = 10;
constexpr std::size_t threadMargin = 4;
constexpr std::size_t childMargin = 0;

const ServerProcess& server() {
    static const ServerProcess process;
    return process;
}

int percent = 100;

int scaled(int count) { return std::max(1, count * percent / 100); }

class Soak : public testing::Test {
public:
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;
    ~Soak() override {
        closeTabs(0);
        Application::shared().setMainMenu(nullptr);
        TestSupport::runPending();
    }

protected:
    Soak() {
        const std::filesystem::path file = AppDelegate::bookmarksFile().filePath();
        std::filesystem::create_directories(file.parent_path());
        TestSupport::writeContents(file, "[]");
        Application::shared().prepare();
        delegate = AppDelegate::create();
        Application::shared().setDelegate(delegate);
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        TestSupport::runPending();
    }

    void closeTabs(std::size_t remaining) {
        while (delegate->controllers().size() > remaining) {
            delegate->controllers().back()->window()->close();
            TestSupport::runPending();
        }
    }

    Tab openTab(const std::optional<URL>& url) {
        return delegate->openTab(url, delegate->frontBrowserWindow(), nullptr);
    }

    /// Waits until `tab` has loaded the page whose title is `number`.
    static testing::AssertionResult waitForPage(const Tab& tab, int number) {
        const auto& view = *tab->webView();
        const std::string title = std::to_string(number);
        if (runUntil([&] { return view.title() == title && !view.isLoading(); }, std::chrono::minutes(2))) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "title " << testing::PrintToString(view.title()) << ", "
                                           << (view.isLoading() ? "loading" : "not loading") << ", "
                                           << TestSupport::webProcesses().size() << " web processes";
    }

    /// Opens and closes tabs. Every second tab stays blank.
    void openAndCloseTabs(int count) {
        for (int i = 0; i < count; ++i) {
            const bool isBlank = i % 2 == 0;
            const auto tab = openTab(isBlank ? std::nullopt : std::optional(server().url(std::to_string(i))));
            ASSERT_TRUE(isBlank || waitForPage(tab, i)) << "tab " << i;
            if (i % 8 == 7) {
                closeTabs(1);
            }
        }
        closeTabs(1);
    }

    void loadPages(int count) {
        const auto tab = openTab(std::nullopt);
        for (int i = 0; i < count; ++i) {
            tab->load(server().url(std::to_string(i)));
            ASSERT_TRUE(waitForPage(tab, i)) << "load " << i;
        }
        closeTabs(1);
    }

    /// Opens five pages in separate tabs and toggles their bookmarks in turn, `count` times in total.
    void toggleBookmarks(int count) {
        static constexpr int pages = 5;
        std::vector<Tab> tabs;
        for (int i = 0; i < pages; ++i) {
            tabs.push_back(openTab(server().url(std::to_string(i))));
            ASSERT_TRUE(waitForPage(tabs.back(), i));
        }
        for (int i = 0; i < count; ++i) {
            const auto& tab = tabs[static_cast<std::size_t>(i) % pages];
            const bool wasBookmarked = tab->isBookmarked();
            tab->toggleBookmark();
            ASSERT_NE(tab->isBookmarked(), wasBookmarked) << "toggle " << i;
            TestSupport::runPending();
        }
        tabs.clear();
        closeTabs(1);
    }

    void killWebProcesses(int count) {
        // Terminate the web processes that WebKitGTK caches for closed pages, so that only the process of
        // the new page remains.
        ASSERT_TRUE(TestSupport::forgetPages());
        const auto tab = openTab(server().url("0"));
        ASSERT_TRUE(waitForPage(tab, 0));
        for (int i = 1; i <= count; ++i) {
            ASSERT_TRUE(TestSupport::killWebProcesses(*tab->webView(), TestSupport::webProcesses()))
                << "kill " << i;
            tab->load(server().url(std::to_string(i)));
            ASSERT_TRUE(waitForPage(tab, i)) << "kill " << i;
        }
        closeTabs(1);
    }

    /// Waits until idle threads have exited and idle connections have closed. Then prints and returns the
    /// resources that are still in use.
    static Usage settledUsage(const std::string& work) {
        EXPECT_TRUE(TestSupport::forgetPages());
        // GLib's idle threads exit after 15 seconds. Wait longer than that.
        [[maybe_unused]] const bool never = runUntil([] { return false; }, std::chrono::seconds(20));
        // Release the memory that the allocator caches, because it is not a leak.
        malloc_trim(0);
        const Usage now = usage();
        std::printf(
            "%6.0f s  %-27s PSS %6.1f MiB, of which not files %6.1f MiB; %3zu descriptors, %3zu threads, "
            "%zu child processes; %zu threads leaked by WebKitGTK\n",
            std::chrono::duration<double>(Clock::now() - begun).count(), work.c_str(), now.proportional,
            now.own, now.descriptors, now.threads, now.children, now.leakedThreads);
        std::fflush(stdout);
        return now;
    }

    std::shared_ptr<AppDelegate> delegate;
    inline static const Clock::time_point begun = Clock::now();
};

} // namespace

TEST_F(Soak, leavesNothingBehind) {
    // Warm up first: objects that GTK and WebKitGTK create once and keep must not count as leaks.
    openAndCloseTabs(40);
    loadPages(100);
    toggleBookmarks(100);
    killWebProcesses(10);
    const Usage before = settledUsage("warm-up");
    Usage after;
    struct Work {
        const char* name;
        int count;
        std::function<void(int)> run;
    };
    for (const auto& [name, count, run] :
         {Work{"tabs opened and closed", scaled(1000), [&](int times) { openAndCloseTabs(times); }},
          Work{"loads", scaled(5000), [&](int times) { loadPages(times); }},
          Work{"bookmark toggles", scaled(2000), [&](int times) { toggleBookmarks(times); }},
          Work{"killed web processes", scaled(200), [&](int times) { killWebProcesses(times); }}}) {
        run(count);
        ASSERT_FALSE(HasFailure()) << name;
        after = settledUsage(std::to_string(count) + " " + name);
    }
    EXPECT_LE(after.own, before.own + memoryMargin);
    EXPECT_LE(after.descriptors, before.descriptors + descriptorMargin);
    EXPECT_LE(after.threads, before.threads + threadMargin);
    EXPECT_LE(after.children, before.children + childMargin);
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    try {
        if (argc > 1) {
            percent = std::stoi(argv[1]);
        }
        server(); // Fork before there are threads.
        TestSupport::beginDisplaySession();
        return RUN_ALL_TESTS();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The soak failed to start: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
