#include "Platform/POSIX/UnixSocket.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace Platform {

namespace {

/// Calls `bind` or `connect`, or fails with ENOENT if the path of `address` is empty.
int withAddress(int (*call)(int, const sockaddr*, socklen_t), int descriptor, const sockaddr_un& address) {
    if (address.sun_path[0] == '\0') {
        errno = ENOENT;
        return -1;
    }
    return call(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

} // namespace

int bindUnixSocket(int descriptor, const sockaddr_un& address) {
    return withAddress(bind, descriptor, address);
}

int connectUnixSocket(int descriptor, const sockaddr_un& address) {
    return withAddress(connect, descriptor, address);
}

int setSendTimeout(int descriptor, std::chrono::seconds timeout) {
    const timeval value = {.tv_sec = timeout.count(), .tv_usec = 0};
    return setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &value, sizeof value);
}

} // namespace Platform
