#include "Tests/Support/Display.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

// Included last because its macros collide with names in other headers.
#include <X11/XKBlib.h>

namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool accepts(const std::string& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof address.sun_path) {
        return false;
    }
    std::memcpy(static_cast<void*>(address.sun_path), socketPath.data(), socketPath.size());
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) {
        return false;
    }
    const bool connected =
        ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(descriptor);
    return connected;
}

bool desktopsAreManaged() { return std::system("xdotool get_num_desktops >/dev/null 2>&1") == 0; }

/// Returns true if the process has exited or exits within `limit` milliseconds.
bool endsWithin(int limit, pid_t process) {
    const int descriptor = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0) {
        return errno == ESRCH;
    }
    pollfd end{.fd = descriptor, .events = POLLIN, .revents = 0};
    const bool ended = ::poll(&end, 1, limit) == 1;
    ::close(descriptor);
    return ended;
}

} // namespace

TEST(DisplayTestMain, theDisplayIsOneOfItsOwn) {
    const std::string display = variable("DISPLAY");
    ASSERT_EQ(display.find(':'), 0U) << display;
    EXPECT_TRUE(accepts("/tmp/.X11-unix/X" + display.substr(1)));
    EXPECT_EQ(variable("WAYLAND_DISPLAY"), "");
}

TEST(DisplayTestMain, theFirstKeyOfATestBringsNoNewKeyboard) {
    const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), &XCloseDisplay);
    ASSERT_NE(display, nullptr);
    ASSERT_TRUE(
        XkbSelectEvents(display.get(), XkbUseCoreKbd, XkbNewKeyboardNotifyMask, XkbNewKeyboardNotifyMask));
    XSync(display.get(), False);
    ASSERT_EQ(std::system("xdotool key Shift_L"), 0);
    XSync(display.get(), False);
    EXPECT_EQ(XPending(display.get()), 0);
}

TEST(DisplayTestMain, theSessionBusIsOneOfItsOwn) {
    constexpr std::string_view prefix = "unix:path=";
    const std::string address = variable("DBUS_SESSION_BUS_ADDRESS");
    ASSERT_TRUE(address.starts_with(prefix)) << address;
    const std::string path = address.substr(prefix.size(), address.find(',') - prefix.size());
    EXPECT_EQ(std::filesystem::path(path).parent_path(), TestSupport::sessionDirectory());
    EXPECT_TRUE(accepts(path));
}

TEST(DisplayTestMain, everyDirectoryOfTheUserIsEmptyAndPrivate) {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME",
                             "XDG_RUNTIME_DIR"}) {
        const std::filesystem::path path = variable(name);
        EXPECT_EQ(path.parent_path(), TestSupport::sessionDirectory()) << name;
        EXPECT_TRUE(std::filesystem::is_empty(path)) << name;
        EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_all) << name;
    }
}

TEST(DisplayTestMain, theWindowManagerManagesOnceAskedFor) {
    ASSERT_EQ(TestSupport::sessionProcesses().size(), 2U);
    EXPECT_FALSE(desktopsAreManaged());
    TestSupport::startWindowManager();
    EXPECT_TRUE(desktopsAreManaged());
    EXPECT_EQ(TestSupport::sessionProcesses().size(), 3U);
    TestSupport::startWindowManager();
    EXPECT_EQ(TestSupport::sessionProcesses().size(), 3U);
}

TEST(DisplayTestMain, theSessionOutlivesAForkedProcessThatExits) {
    EXPECT_EXIT(std::exit(3), testing::ExitedWithCode(3), "");
    for (const pid_t process : TestSupport::sessionProcesses()) {
        EXPECT_FALSE(endsWithin(0, process)) << process;
    }
    EXPECT_TRUE(std::filesystem::exists(variable("HOME")));
}

// The test `helpersEndWithAKilledTestProgram` runs this test in a separate process.
TEST(DisplayTestMain, DISABLED_isKilled) {
    TestSupport::startWindowManager();
    std::ofstream report(variable("KEYLOFT_KILLED_TEST_REPORT"));
    report << TestSupport::sessionDirectory().string() << '\n';
    for (const pid_t process : TestSupport::sessionProcesses()) {
        report << process << '\n';
    }
    report.close();
    ::raise(SIGKILL);
}

TEST(DisplayTestMain, helpersEndWithAKilledTestProgram) {
    const std::filesystem::path reportPath = TestSupport::sessionDirectory() / "killed-test-report";
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::string command = "KEYLOFT_KILLED_TEST_REPORT='" + reportPath.string() + "' '" + program +
                                "' --gtest_also_run_disabled_tests --gtest_filter='*.DISABLED_isKilled' >&2";
    ASSERT_NE(std::system(command.c_str()), 0);

    std::ifstream report(reportPath);
    std::string directory;
    ASSERT_TRUE(std::getline(report, directory));
    int count = 0;
    for (pid_t process = 0; report >> process; ++count) {
        EXPECT_TRUE(endsWithin(10'000, process)) << process;
    }
    EXPECT_EQ(count, 3);
    std::filesystem::remove_all(directory);
}
