#include "Platform/POSIX/UnixSocket.h"

#include "Platform/POSIX/Writing.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/ucred.h>
#include <unistd.h>

#include <cerrno>

namespace Platform {

namespace {

/// Disables SIGPIPE permanently for a pipe, terminal or socket. Returns false on failure. macOS sends the
/// signal to the process, so blocking it on this thread does not keep other threads from receiving it.
bool raisesNoSignal(int descriptor) { return fcntl(descriptor, F_SETNOSIGPIPE, 1) == 0; }

/// Sets the flags that macOS cannot set when it creates a socket.
int prepared(int descriptor, int statusFlags) {
    if (descriptor < 0) {
        return -1;
    }
    if (fcntl(descriptor, F_SETFD, FD_CLOEXEC) != 0 || fcntl(descriptor, F_SETFL, statusFlags) != 0) {
        const int error = errno;
        close(descriptor);
        errno = error;
        return -1;
    }
    return descriptor;
}

} // namespace

int openUnixSocket() { return prepared(socket(AF_UNIX, SOCK_STREAM, 0), 0); }

int acceptUnixSocket(int listening) { return prepared(accept(listening, nullptr, nullptr), O_NONBLOCK); }

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

ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count) {
    // F_SETNOSIGPIPE cannot be set on a socket whose peer has disconnected.
    return raisesNoSignal(descriptor) ? write(descriptor, bytes, count)
                                      : writeHoldingBackSignal(descriptor, bytes, count);
}

} // namespace Platform
