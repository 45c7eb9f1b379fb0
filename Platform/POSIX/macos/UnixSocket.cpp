#include "Platform/POSIX/UnixSocket.h"

#include "Platform/POSIX/Writing.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/ucred.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

namespace Platform {

namespace {

/// Disables SIGPIPE permanently for a pipe, terminal or socket. Returns false on failure. macOS sends the
/// signal to the process, so blocking it on this thread does not keep other threads from receiving it.
bool raisesNoSignal(int descriptor) { return fcntl(descriptor, F_SETNOSIGPIPE, 1) == 0; }

/// Sets the flags of a new socket. macOS cannot set close-on-exec when it creates the socket.
int prepared(int descriptor) {
    if (descriptor < 0) {
        return -1;
    }
    if (fcntl(descriptor, F_SETFD, FD_CLOEXEC) != 0) {
        const int error = errno;
        close(descriptor);
        errno = error;
        return -1;
    }
    const int on = 1;
    setsockopt(descriptor, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    return descriptor;
}

} // namespace

int openUnixSocket() { return prepared(socket(AF_UNIX, SOCK_STREAM, 0)); }

int bindUnixSocket(int descriptor, const sockaddr_un& address) {
    return bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

int connectUnixSocket(int descriptor, const sockaddr_un& address) {
    return connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

int acceptUnixSocket(int listening) {
    const int connection = prepared(accept(listening, nullptr, nullptr));
    if (connection >= 0) {
        fcntl(connection, F_SETFL, O_NONBLOCK);
    }
    return connection;
}

std::optional<uid_t> unixSocketPeerUser(int descriptor) {
    static_assert(sizeof(xucred) == 76);
    xucred credentials = {};
    socklen_t length = sizeof credentials;
    if (getsockopt(descriptor, SOL_LOCAL, LOCAL_PEERCRED, &credentials, &length) != 0 ||
        credentials.cr_version != XUCRED_VERSION) {
        return std::nullopt;
    }
    return credentials.cr_uid;
}

int setSendTimeout(int descriptor, std::chrono::seconds timeout) {
    const timeval value = {.tv_sec = timeout.count(), .tv_usec = 0};
    return setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &value, sizeof value);
}

ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count) {
    // F_SETNOSIGPIPE cannot be set on a socket whose peer has disconnected.
    return raisesNoSignal(descriptor) ? write(descriptor, bytes, count)
                                      : writeHoldingBackSignal(descriptor, bytes, count);
}

} // namespace Platform
