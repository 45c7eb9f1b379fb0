#include "Platform/POSIX/UnixSocket.h"

#include <pthread.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>

namespace Platform {

namespace {

/// Linux takes a path that begins with NUL for a name in its abstract space.
bool isAbstract(const sockaddr_un& address) {
    if (address.sun_path[0] == '\0') {
        errno = ENOENT;
        return true;
    }
    return false;
}

/// `write` on a descriptor that is no socket, with the SIGPIPE it may raise taken back before anyone sees it.
ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count) {
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    sigset_t pending;
    sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;

    const ssize_t written = write(descriptor, bytes, count);
    const int error = errno;
    if (written < 0 && error == EPIPE && !wasPending) {
        const timespec noTime = {};
        while (sigtimedwait(&pipeSignal, nullptr, &noTime) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

/// The kernel reports a send that ran into its time-out as a success with fewer bytes.
bool hasTimedOut(int descriptor, std::chrono::steady_clock::duration waited) {
    timeval timeout = {};
    socklen_t length = sizeof timeout;
    if (getsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &timeout, &length) != 0) {
        return false;
    }
    const auto limit = std::chrono::seconds(timeout.tv_sec) + std::chrono::microseconds(timeout.tv_usec);
    return limit.count() != 0 && waited >= limit;
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

int acceptUnixSocket(int listening) { return accept4(listening, nullptr, nullptr, SOCK_CLOEXEC); }

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

ssize_t writeAtOnce(int descriptor, const void* bytes, std::size_t count) {
    return send(descriptor, bytes, count, MSG_NOSIGNAL | MSG_DONTWAIT);
}

ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count) {
    const auto begin = std::chrono::steady_clock::now();
    const ssize_t sent = send(descriptor, bytes, count, MSG_NOSIGNAL);
    if (sent < 0 && errno == ENOTSOCK) {
        return writeHoldingBackSignal(descriptor, bytes, count);
    }
    if (sent > 0 && static_cast<std::size_t>(sent) < count &&
        hasTimedOut(descriptor, std::chrono::steady_clock::now() - begin)) {
        errno = EAGAIN;
        return -1;
    }
    return sent;
}

} // namespace Platform
