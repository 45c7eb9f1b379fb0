#pragma once

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/types.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string_view>
#include <thread>

namespace TestSupport {

/// Functions that intercept system calls. The linker option --wrap redirects the calls. A call is passed to
/// the kernel if its function is empty or returns `std::nullopt`.
struct SystemCalls {
    /// The result of a call, and the value of `errno` if the result is negative.
    struct Answer {
        ssize_t result = 0;
        int error = 0;
    };
    using Maybe = std::optional<Answer>;

    static Maybe failure(int error) { return Answer{.result = -1, .error = error}; }

    std::function<Maybe(int descriptor, std::string_view bytes)> send;
    std::function<Maybe(int descriptor, std::size_t count)> read;
    std::function<Maybe(int descriptor, std::size_t count)> recv;
    std::function<Maybe(int listening)> accept;
    std::function<Maybe()> socket;
    std::function<Maybe(socklen_t length)> bind;
    std::function<Maybe(socklen_t length)> connect;
    std::function<Maybe(int backlog)> listen;
    std::function<Maybe(std::string_view path)> chmod;
    /// Called after the kernel has closed the descriptor.
    std::function<Maybe()> close;
    std::function<Maybe()> getuid;
    std::function<Maybe(std::string_view path, struct stat* status)> stat;
    std::function<Maybe(int level, int option, void* value, socklen_t* length)> getsockopt;
    std::function<Maybe(int level, int option, const void* value)> setsockopt;

    /// The installed functions, or null. Not owned.
    static std::atomic<const SystemCalls*> current;
    /// Number of threads that are currently executing one of the installed functions.
    static std::atomic<int> asking;
};

/// Installs `calls` for the lifetime of this object, which must not outlive `calls`. The destructor waits for
/// calls that are in progress.
class Intercepted {
public:
    explicit Intercepted(const SystemCalls& calls) { SystemCalls::current = &calls; }
    Intercepted(const Intercepted&) = delete;
    Intercepted& operator=(const Intercepted&) = delete;
    ~Intercepted() {
        SystemCalls::current = nullptr;
        while (SystemCalls::asking != 0) {
            std::this_thread::yield();
        }
    }
};

/// Make a system call without interception.
ssize_t realSend(int descriptor, const void* bytes, std::size_t count, int flags);
int realStat(std::string_view path, struct stat* status);

} // namespace TestSupport
