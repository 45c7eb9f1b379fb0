#include "Platform/POSIX/UnixSocket.h"

#include "Platform/POSIX/Writing.h"

#include <sys/socket.h>

#include <cerrno>

namespace Platform {

int openUnixSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

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

ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count) {
    const ssize_t sent = send(descriptor, bytes, count, MSG_NOSIGNAL);
    if (sent < 0 && errno == ENOTSOCK) {
        return writeHoldingBackSignal(descriptor, bytes, count);
    }
    return sent;
}

} // namespace Platform
