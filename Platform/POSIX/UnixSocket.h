#pragma once

#include <sys/types.h>
#include <sys/un.h>

#include <chrono>
#include <cstddef>
#include <optional>

namespace Platform {

/// Operations on Unix-domain stream sockets that differ between platforms; all others are plain POSIX. Each
/// operation corresponds to one system call. It fails with -1 (or nothing) and sets `errno`, and does not
/// repeat an interrupted call.
///
/// Descriptors created here are closed on exec. Safe on any thread.

/// Creates a socket that is not connected. Write to it with `writeWithoutSignal`.
int openUnixSocket();

/// Bind or connect the socket to a file. An empty path is an error (ENOENT), because Linux would use a name
/// in its abstract namespace, which file permissions do not protect.
int bindUnixSocket(int descriptor, const sockaddr_un& address);
int connectUnixSocket(int descriptor, const sockaddr_un& address);

/// Accepts the next waiting connection and makes it non-blocking. If none is waiting, blocks, or fails with
/// EAGAIN if `listening` is non-blocking.
int acceptUnixSocket(int listening);

/// The effective user of the peer process at the time when it connected. Returns nothing if the kernel does
/// not report it.
std::optional<uid_t> unixSocketPeerUser(int descriptor);

/// Limits each time that a write to a blocking socket waits for its peer to read.
int setSendTimeout(int descriptor, std::chrono::seconds timeout);

/// Writes to a socket, pipe or other file as `write` does, but without delivering SIGPIPE, regardless of the
/// process's disposition of that signal.
ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
