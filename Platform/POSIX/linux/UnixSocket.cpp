#include "Platform/POSIX/UnixSocket.h"

#include "Platform/POSIX/Writing.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <chrono>

namespace Platform {

namespace {

/// Returns true and sets `errno` if the path begins with NUL, as names in Linux's abstract namespace do.
bool isAbstract(const sockaddr_un& address) {
    if (address.sun_path[0] == '\0') {
        errno = ENOENT;
        return true;
    }
    return false;
}

} // namespace

int openUnixSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

int bindUnixSocket(int descriptor, const sockaddr_un& address) {
    if (isAbstract(address)) {
        return -1;
    }
    return bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

int connectUnixSocket(int descriptor, const sockaddr_un& address) {
    if (isAbstract(address)) {
        return -1;
    }
    return connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

int acceptUnixSocket(int listening) {
    return accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
}

std::optional<uid_t> unixSocketPeerUser(int descriptor) {
    ucred credentials = {};
    socklen_t length = sizeof credentials;
    if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0 ||
        length != sizeof credentials) {
        return std::nullopt;
    }
    return credentials.uid;
}

int setSendTimeout(int descriptor, std::chrono::seconds timeout) {
    const timeval value = {.tv_sec = timeout.count(), .tv_usec = 0};
    return setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &value, sizeof value);
}

ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count) {
    const ssize_t sent = send(descriptor, bytes, count, MSG_NOSIGNAL);
    if (sent < 0 && errno == ENOTSOCK) {
        return writeHoldingBackSignal(descriptor, bytes, count);
    }
    return sent;
}

} // namespace Platform
