#include "Tests/Support/Program.h"

#include "Tests/Support/Waiting.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <system_error>

namespace TestSupport {

namespace {

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const Program::Environment& changes) {
    std::vector<std::string> variables;
    for (const char* const* variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (!changes.contains(text.substr(0, text.find('=')))) {
            variables.push_back(text);
        }
    }
    for (const auto& [name, value] : changes) {
        if (value) {
            variables.push_back(name + "=" + *value);
        }
    }
    return variables;
}

/// Waits until the descriptor is readable or its other end is closed. Returns false if `patience` elapses
/// first.
bool waitFor(int descriptor) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    pollfd polled{.fd = descriptor, .events = POLLIN, .revents = 0};
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return false;
        }
        if (poll(&polled, 1, static_cast<int>(left.count())) > 0) {
            return true;
        }
    }
}

} // namespace

Program::Program(const std::filesystem::path& file, const std::vector<std::string>& arguments,
                 const Environment& environment) {
    std::vector<std::string> texts = {file.string()};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    const auto argv = pointersTo(texts);
    auto variables = environmentWith(environment);
    const auto envp = pointersTo(variables);

    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail("pipe2");
    }
    output_ = ends[0];
    errors_ = memfd_create("errors", MFD_CLOEXEC);
    if (errors_ < 0) {
        fail("memfd_create");
    }
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        // The kernel sends no parent-death signal if the parent exited before prctl() was called.
        if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent) {
            _exit(126);
        }
        dup2(ends[1], STDOUT_FILENO);
        dup2(errors_, STDERR_FILENO);
        execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    close(ends[1]);
    if (process_ < 0) {
        fail("fork");
    }
    ended_ = static_cast<int>(syscall(SYS_pidfd_open, process_, 0));
    if (ended_ < 0) {
        fail("pidfd_open");
    }
}

Program::~Program() {
    if (!status_) {
        kill(process_, SIGKILL);
        while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    for (const int descriptor : {ended_, output_, errors_}) {
        close(descriptor);
    }
}

void Program::signal(int number) const {
    if (!status_) {
        kill(process_, number);
    }
}

bool Program::isRunning() const {
    pollfd polled{.fd = ended_, .events = POLLIN, .revents = 0};
    return !status_ && poll(&polled, 1, 0) == 0;
}

bool Program::hasThread(const std::string& name) const {
    std::error_code error;
    std::filesystem::directory_iterator thread("/proc/" + std::to_string(process_) + "/task", error);
    for (; !error && thread != std::filesystem::directory_iterator(); thread.increment(error)) {
        std::string line;
        if (std::getline(std::ifstream(thread->path() / "comm"), line) && line == name) {
            return true;
        }
    }
    return false;
}

std::optional<int> Program::waitForExit() {
    if (!status_) {
        int status = 0;
        if (!waitFor(ended_) || waitpid(process_, &status, 0) != process_) {
            return std::nullopt;
        }
        status_ = status;
    }
    return WIFEXITED(*status_) ? std::optional<int>(WEXITSTATUS(*status_)) : std::nullopt;
}

std::optional<std::string> Program::nextLine() {
    while (true) {
        if (const auto end = buffered_.find('\n'); end != std::string::npos) {
            auto line = buffered_.substr(0, end);
            buffered_.erase(0, end + 1);
            return line;
        }
        std::array<char, 65536> bytes{};
        const ssize_t size = waitFor(output_) ? read(output_, bytes.data(), bytes.size()) : 0;
        if (size <= 0) {
            return std::nullopt;
        }
        buffered_.append(bytes.data(), static_cast<std::size_t>(size));
    }
}

std::string Program::errors() const {
    std::string text(static_cast<std::size_t>(lseek(errors_, 0, SEEK_END)), '\0');
    const ssize_t size = pread(errors_, text.data(), text.size(), 0);
    text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return text;
}

} // namespace TestSupport
