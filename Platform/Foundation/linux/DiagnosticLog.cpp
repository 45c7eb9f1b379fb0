#include "Platform/Foundation/DiagnosticLog.h"

#include "Platform/Foundation/LogText.h"

#include <pthread.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string>

namespace Platform {

namespace {

std::string prefix() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local = {};
    localtime_r(&now.tv_sec, &local);
    std::array<char, 32> date = {};
    const std::size_t dateLength = std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::array<char, 8> fraction = {};
    std::snprintf(fraction.data(), fraction.size(), ".%03d ", static_cast<int>(now.tv_nsec / 1'000'000));
    return std::string(date.data(), dateLength) + fraction.data() + program_invocation_short_name + '[' +
           std::to_string(getpid()) + "] ";
}

/// Keeps a broken pipe from ending the process while it lives, without touching the process's signal
/// handlers.
class BrokenPipeSignalBlock {
public:
    BrokenPipeSignalBlock() {
        sigset_t pending = {};
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&brokenPipe_);
        sigaddset(&brokenPipe_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &brokenPipe_, &previous_);
    }
    BrokenPipeSignalBlock(const BrokenPipeSignalBlock&) = delete;
    BrokenPipeSignalBlock& operator=(const BrokenPipeSignalBlock&) = delete;
    ~BrokenPipeSignalBlock() {
        if (!wasPending_) {
            const timespec immediately = {};
            while (sigtimedwait(&brokenPipe_, nullptr, &immediately) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    }

private:
    sigset_t brokenPipe_ = {};
    sigset_t previous_ = {};
    bool wasPending_ = false;
};

} // namespace

void diagnosticLog(std::string_view text) {
    const std::string line = prefix() + escapingControlCharacters(text) + '\n';

    const BrokenPipeSignalBlock block;
    std::string_view rest = line;
    while (!rest.empty()) {
        const ssize_t count = write(STDERR_FILENO, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace Platform
