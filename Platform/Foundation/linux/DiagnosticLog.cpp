#include "Platform/Foundation/DiagnosticLog.h"

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

void appendEscape(std::string& line, unsigned char byte) {
    static constexpr std::string_view digits = "0123456789abcdef";
    switch (byte) {
    case '\n':
        line += "\\n";
        return;
    case '\r':
        line += "\\r";
        return;
    default:
        line += "\\x";
        line += digits[byte >> 4U];
        line += digits[byte & 0xFU];
    }
}

void appendHarmless(std::string& line, std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        // U+0080 to U+009F are controls as well; in UTF-8 they are C2 80 to C2 9F.
        const bool isHighControl = byte == 0xC2 && next >= 0x80 && next < 0xA0;
        if ((byte < 0x20 && byte != '\t') || byte == 0x7F) {
            appendEscape(line, byte);
        } else if (isHighControl) {
            appendEscape(line, next);
            ++i;
        } else {
            line += text[i];
        }
    }
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
    std::string line = prefix();
    line.reserve(line.size() + text.size() + 1);
    appendHarmless(line, text);
    line += '\n';

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
