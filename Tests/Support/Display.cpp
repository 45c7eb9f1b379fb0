#include "Tests/Support/Display.h"

#include "Platform/POSIX/Descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace TestSupport {

namespace {

using Platform::Descriptor;

// Timeout for starting a server, long enough for a machine under load.
constexpr auto startLimit = std::chrono::seconds(30);

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;

    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            fail("pipe2");
        }
        readEnd = Descriptor(ends[0]);
        writeEnd = Descriptor(ends[1]);
    }
};

/// Waits until one of the descriptors is readable or its other end is closed. Returns false if `startLimit`
/// elapses first.
template <std::size_t count>
bool waitForAny(std::array<pollfd, count>& descriptors) {
    const auto deadline = std::chrono::steady_clock::now() + startLimit;
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return false;
        }
        const int ready = ::poll(descriptors.data(), descriptors.size(), static_cast<int>(left.count()));
        if (ready > 0) {
            return true;
        }
        if (ready < 0 && errno != EINTR) {
            std::perror("poll");
            std::abort();
        }
    }
}

/// Identifies the process that created an object. A process that a test has forked destroys its copies of the
/// parent's objects when it exits normally, but must not release the parent's resources.
class Maker {
public:
    [[nodiscard]] bool isThisProcess() const { return ::getpid() == process_; }

private:
    pid_t process_ = ::getpid();
};

/// A child process that is terminated when this object is destroyed or when this process exits, whichever
/// comes first.
class Child {
public:
    /// `output` becomes the child's standard output unless it is -1.
    Child(std::string name, const std::vector<std::string>& arguments, int output = -1)
        : name_(std::move(name)) {
        // Create everything that the child needs before the fork. A test may have started threads, so the
        // child must not allocate memory or take a lock between fork and exec.
        std::vector<std::string> texts = arguments;
        std::vector<char*> argv;
        argv.reserve(texts.size() + 1);
        for (std::string& text : texts) {
            argv.push_back(text.data());
        }
        argv.push_back(nullptr);

        const pid_t parent = ::getpid();
        process_ = ::fork();
        if (process_ < 0) {
            fail("fork");
        }
        if (process_ == 0) {
            // The kernel sends no parent-death signal if the parent exited before prctl() was called.
            if (::prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || ::getppid() != parent) {
                ::_exit(126);
            }
            // SIGTERM must terminate the child even if the test program blocks or ignores the signal.
            ::signal(SIGTERM, SIG_DFL);
            sigset_t none;
            ::sigemptyset(&none);
            ::sigprocmask(SIG_SETMASK, &none, nullptr);
            if (output >= 0) {
                ::dup2(output, STDOUT_FILENO);
            }
            ::execvp(argv[0], argv.data());
            ::_exit(127);
        }
        ended_ = Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process_, 0)));
        if (ended_.get() < 0) {
            const int error = errno;
            stop();
            errno = error;
            fail("pidfd_open");
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (maker_.isThisProcess()) {
            stop();
        }
    }

    [[nodiscard]] pid_t process() const { return process_; }

    /// Returns the first line from `source`. Throws std::runtime_error if the child terminates first, or if
    /// `startLimit` elapses.
    std::string readLine(int source) const {
        std::string line;
        while (true) {
            std::array<pollfd, 2> descriptors{{{.fd = source, .events = POLLIN, .revents = 0},
                                               {.fd = ended_.get(), .events = POLLIN, .revents = 0}}};
            if (!waitForAny(descriptors)) {
                throw std::runtime_error(name_ + " did not start in time");
            }
            if ((descriptors[0].revents & POLLIN) != 0) {
                char character = 0;
                const ssize_t size = ::read(source, &character, 1);
                if (size == 1 && character == '\n') {
                    return line;
                }
                if (size == 1) {
                    line += character;
                    continue;
                }
            }
            if (descriptors[1].revents != 0 || (descriptors[0].revents & (POLLHUP | POLLERR)) != 0) {
                throw std::runtime_error(name_ + " could not be started, or exited at once");
            }
        }
    }

private:
    void stop() {
        ::kill(process_, SIGTERM);
        std::array<pollfd, 1> descriptors{{{.fd = ended_.get(), .events = POLLIN, .revents = 0}}};
        if (ended_.get() < 0 || !waitForAny(descriptors)) {
            ::kill(process_, SIGKILL);
        }
        while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }

    Maker maker_;
    std::string name_;
    pid_t process_ = -1;
    Descriptor ended_;
};

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string pattern = std::filesystem::temp_directory_path() / "keyloft-test-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) {
            fail("mkdtemp " + pattern);
        }
        path_ = pattern;
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        if (!maker_.isThisProcess()) {
            return;
        }
        // Retry, because processes that the tests launched may still write files while they terminate.
        std::error_code error;
        for (int attempt = 0; attempt < 10; ++attempt) {
            std::filesystem::remove_all(path_, error);
            if (!error) {
                return;
            }
        }
        std::fprintf(stderr, "%s could not be removed: %s\n", path_.c_str(), error.message().c_str());
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    Maker maker_;
    std::filesystem::path path_;
};

void setVariable(const char* name, const std::string& value) {
    if (::setenv(name, value.c_str(), 1) != 0) {
        fail("setenv");
    }
}

class Session {
public:
    Session() {
        setEnvironment();
        startDisplay();
        startBus();
    }

    void startWindowManager() {
        if (windowManager_) {
            return;
        }
        // openbox runs its startup command once it manages the display. The command reports this through a
        // FIFO.
        const std::filesystem::path ready = directory_.path() / "window-manager-ready";
        if (::mkfifo(ready.c_str(), 0600) != 0) {
            fail("mkfifo");
        }
        // Open the FIFO for both reading and writing, so that it does not report end-of-file before the first
        // writer opens it.
        const Descriptor source(::open(ready.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC),
                                "open " + ready.string());
        windowManager_.emplace("openbox",
                               std::vector<std::string>{"openbox", "--sm-disable", "--startup",
                                                        "sh -c 'echo ready >\"" + ready.string() + "\"'"});
        windowManager_->readLine(source.get());
    }

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_.path(); }

    [[nodiscard]] std::vector<pid_t> processes() const {
        std::vector<pid_t> result;
        for (const std::optional<Child>* child : {&display_, &bus_, &windowManager_}) {
            if (*child) {
                result.push_back((*child)->process());
            }
        }
        return result;
    }

private:
    std::filesystem::path makeDirectory(const char* name) {
        std::filesystem::path path = directory_.path() / name;
        std::filesystem::create_directory(path);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    void setEnvironment() {
        setVariable("HOME", makeDirectory("home"));
        setVariable("XDG_CONFIG_HOME", makeDirectory("config"));
        setVariable("XDG_CACHE_HOME", makeDirectory("cache"));
        setVariable("XDG_DATA_HOME", makeDirectory("data"));
        setVariable("XDG_STATE_HOME", makeDirectory("state"));
        setVariable("XDG_RUNTIME_DIR", makeDirectory("runtime"));
        setVariable("LANG", "C.UTF-8");
        setVariable("GDK_BACKEND", "x11");
        // Disable OpenGL, as the application does on a machine without a graphics card. Loading the emulation
        // would take a sixth of each test's processor time.
        setVariable("GDK_DEBUG", "gl-disable");
        setVariable("GSK_RENDERER", "cairo");
        setVariable("WEBKIT_DISABLE_DMABUF_RENDERER", "1");
        setVariable("GIO_USE_VFS", "local");
        setVariable("GSETTINGS_BACKEND", "memory");
        // Unset the variables that describe the session from which the tests were launched.
        for (const char* name :
             {"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS",
              "NO_AT_BRIDGE", "LC_ALL", "LANGUAGE", "GTK_THEME", "GTK_A11Y", "GTK_IM_MODULE"}) {
            ::unsetenv(name);
        }
    }

    void startDisplay() {
        Pipe number;
        // Disable auto-repeat (-r), because a key may be held long enough to repeat on a machine under load.
        display_.emplace("Xvfb",
                         std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24",
                                                  "-nolisten", "tcp", "-noreset", "-r", "-extension", "GLX"},
                         number.writeEnd.get());
        number.writeEnd.close();
        setVariable("DISPLAY", ":" + display_->readLine(number.readEnd.get()));
        // When the first key is pressed, the X server announces a new keyboard to all clients. openbox then
        // releases and re-establishes its key grabs, and misses the keys that are pressed in between (seen
        // with 3.6.1, not reported). Press the first key before any client connects.
        if (std::system("xdotool key --delay 0 Shift_L") != 0) {
            throw std::runtime_error("xdotool could not type a key");
        }
    }

    // Starts a bus that can activate only the accessibility bus. With the default configuration, the bus
    // would activate any installed service, such as a portal, a settings daemon or a keyring. The services
    // differ between machines and outlive the test.
    void startBus() {
        const std::filesystem::path services = makeDirectory("services");
        const std::filesystem::path accessibility = "/usr/share/dbus-1/services/org.a11y.Bus.service";
        if (std::filesystem::exists(accessibility)) {
            std::filesystem::copy_file(accessibility, services / accessibility.filename());
        }
        const std::filesystem::path configuration = directory_.path() / "session.conf";
        std::ofstream(configuration)
            << "<busconfig><type>session</type><listen>unix:path=" << (directory_.path() / "bus").string()
            << "</listen><servicedir>" << services.string()
            << "</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
               "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>"
               "</busconfig>\n";
        Pipe address;
        bus_.emplace("dbus-daemon",
                     std::vector<std::string>{"dbus-daemon", "--config-file=" + configuration.string(),
                                              "--nofork", "--nopidfile", "--print-address=1"},
                     address.writeEnd.get());
        address.writeEnd.close();
        setVariable("DBUS_SESSION_BUS_ADDRESS", bus_->readLine(address.readEnd.get()));
    }

    // Members are destroyed in reverse order, so the directory is removed after the processes that use it
    // have exited.
    TemporaryDirectory directory_;
    std::optional<Child> display_;
    std::optional<Child> bus_;
    std::optional<Child> windowManager_;
};

// The destructor terminates the session after main() has returned. The exit handlers of GTK and WebKitGTK
// still need the display. GTK and WebKitGTK are first used after this object is created, so their exit
// handlers run before the destructor.
std::optional<Session>& theSession() {
    static std::optional<Session> session;
    return session;
}

Session& runningSession() {
    std::optional<Session>& session = theSession();
    if (!session) {
        std::fputs("The display session exists only while tests run.\n", stderr);
        std::abort();
    }
    return *session;
}

} // namespace

void beginDisplaySession() { theSession().emplace(); }

void startWindowManager() { runningSession().startWindowManager(); }

const std::filesystem::path& sessionDirectory() { return runningSession().directory(); }

std::vector<pid_t> sessionProcesses() { return runningSession().processes(); }

} // namespace TestSupport
