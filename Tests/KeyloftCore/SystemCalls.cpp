#include "Tests/KeyloftCore/SystemCalls.h"

#include <sys/stat.h>

#include <cerrno>
#include <string>

// Symbols that the linker option --wrap uses for the original functions and their replacements.
// NOLINTBEGIN(bugprone-reserved-identifier)

extern "C" {
ssize_t __real_send(int descriptor, const void* bytes, size_t count, int flags);
ssize_t __real_read(int descriptor, void* bytes, size_t count);
ssize_t __real_recv(int descriptor, void* bytes, size_t count, int flags);
int __real_accept4(int descriptor, sockaddr* address, socklen_t* length, int flags);
int __real_socket(int domain, int type, int protocol);
int __real_bind(int descriptor, const sockaddr* address, socklen_t length);
int __real_connect(int descriptor, const sockaddr* address, socklen_t length);
int __real_listen(int descriptor, int backlog);
int __real_close(int descriptor);
uid_t __real_getuid();
int __real_chmod(const char* path, mode_t mode);
int __real_stat(const char* path, struct stat* status);
int __real_getsockopt(int descriptor, int level, int option, void* value, socklen_t* length);
int __real_setsockopt(int descriptor, int level, int option, const void* value, socklen_t length);
}

namespace TestSupport {

std::atomic<const SystemCalls*> SystemCalls::current = nullptr;
std::atomic<int> SystemCalls::asking = 0;

ssize_t realSend(int descriptor, const void* bytes, std::size_t count, int flags) {
    return __real_send(descriptor, bytes, count, flags);
}

int realStat(std::string_view path, struct stat* status) {
    return __real_stat(std::string(path).c_str(), status);
}

} // namespace TestSupport

namespace {

using TestSupport::SystemCalls;

template <typename Member, typename... Arguments>
SystemCalls::Maybe ask(Member member, Arguments... arguments) {
    ++SystemCalls::asking;
    const auto* calls = SystemCalls::current.load();
    auto answer = calls != nullptr && calls->*member ? (calls->*member)(arguments...) : std::nullopt;
    --SystemCalls::asking;
    return answer;
}

template <typename Member, typename... Arguments>
bool answered(Member member, ssize_t& result, Arguments... arguments) {
    const auto answer = ask(member, arguments...);
    if (!answer) {
        return false;
    }
    result = answer->result;
    if (answer->result < 0) {
        errno = answer->error;
    }
    return true;
}

} // namespace

extern "C" {

ssize_t __wrap_send(int descriptor, const void* bytes, size_t count, int flags) {
    ssize_t result = 0;
    const std::string_view view(static_cast<const char*>(bytes), count);
    return answered(&SystemCalls::send, result, descriptor, view)
               ? result
               : __real_send(descriptor, bytes, count, flags);
}

ssize_t __wrap_read(int descriptor, void* bytes, size_t count) {
    ssize_t result = 0;
    return answered(&SystemCalls::read, result, descriptor, count) ? result
                                                                   : __real_read(descriptor, bytes, count);
}

ssize_t __wrap_recv(int descriptor, void* bytes, size_t count, int flags) {
    ssize_t result = 0;
    return answered(&SystemCalls::recv, result, descriptor, count)
               ? result
               : __real_recv(descriptor, bytes, count, flags);
}

int __wrap_accept4(int descriptor, sockaddr* address, socklen_t* length, int flags) {
    ssize_t result = 0;
    return answered(&SystemCalls::accept, result, descriptor)
               ? static_cast<int>(result)
               : __real_accept4(descriptor, address, length, flags);
}

int __wrap_socket(int domain, int type, int protocol) {
    ssize_t result = 0;
    return answered(&SystemCalls::socket, result) ? static_cast<int>(result)
                                                  : __real_socket(domain, type, protocol);
}

int __wrap_bind(int descriptor, const sockaddr* address, socklen_t length) {
    ssize_t result = 0;
    return answered(&SystemCalls::bind, result, length) ? static_cast<int>(result)
                                                        : __real_bind(descriptor, address, length);
}

int __wrap_connect(int descriptor, const sockaddr* address, socklen_t length) {
    ssize_t result = 0;
    return answered(&SystemCalls::connect, result, length) ? static_cast<int>(result)
                                                           : __real_connect(descriptor, address, length);
}

int __wrap_listen(int descriptor, int backlog) {
    ssize_t result = 0;
    return answered(&SystemCalls::listen, result, backlog) ? static_cast<int>(result)
                                                           : __real_listen(descriptor, backlog);
}

int __wrap_chmod(const char* path, mode_t mode) {
    ssize_t result = 0;
    return answered(&SystemCalls::chmod, result, std::string_view(path)) ? static_cast<int>(result)
                                                                         : __real_chmod(path, mode);
}

int __wrap_close(int descriptor) {
    const int closed = __real_close(descriptor);
    ssize_t result = 0;
    return answered(&SystemCalls::close, result) ? static_cast<int>(result) : closed;
}

uid_t __wrap_getuid() {
    ssize_t result = 0;
    return answered(&SystemCalls::getuid, result) ? static_cast<uid_t>(result) : __real_getuid();
}

int __wrap_stat(const char* path, struct stat* status) {
    ssize_t result = 0;
    return answered(&SystemCalls::stat, result, std::string_view(path), status) ? static_cast<int>(result)
                                                                                : __real_stat(path, status);
}

int __wrap_getsockopt(int descriptor, int level, int option, void* value, socklen_t* length) {
    ssize_t result = 0;
    return answered(&SystemCalls::getsockopt, result, level, option, value, length)
               ? static_cast<int>(result)
               : __real_getsockopt(descriptor, level, option, value, length);
}

int __wrap_setsockopt(int descriptor, int level, int option, const void* value, socklen_t length) {
    ssize_t result = 0;
    return answered(&SystemCalls::setsockopt, result, level, option, value)
               ? static_cast<int>(result)
               : __real_setsockopt(descriptor, level, option, value, length);
}
}

// NOLINTEND(bugprone-reserved-identifier)
