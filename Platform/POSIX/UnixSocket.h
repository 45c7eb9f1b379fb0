#pragma once

#include <sys/types.h>
#include <sys/un.h>

#include <chrono>
#include <cstddef>
#include <optional>

namespace Platform {

/// Operations on Unix-domain stream sockets that differ between platforms; all others are plain POSIX. The
/// functions behave like system calls: on failure they return -1 (or nothing) and set `errno`, and they do
/// not retry a call that is interrupted by a signal.
///
/// New descriptors have the close-on-exec flag set. All functions may be called on any thread.

/// Creates an unconnected socket. Write to it with `writeWithoutSignal`.
int openUnixSocket();

/// Binds or connects the socket to a file. Fails with ENOENT if the path is empty, because Linux would use a
/// name in its abstract namespace, which file permissions do not protect.
int bindUnixSocket(int descriptor, const sockaddr_un& address);
int connectUnixSocket(int descriptor, const sockaddr_un& address);

/// Accepts a connection and makes it non-blocking. If no connection is pending, waits for one or, if
/// `listening` is non-blocking, fails with EAGAIN.
int acceptUnixSocket(int listening);

/// Returns the effective user ID that the peer had when it connected, or nothing if it is unknown.
std::optional<uid_t> unixSocketPeerUser(int descriptor);

/// Limits how long a write to a blocking socket waits for the peer to read. Applies to each wait separately.
int setSendTimeout(int descriptor, std::chrono::seconds timeout);

/// Like `write`, for sockets, pipes and other files, but never raises SIGPIPE.
ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
