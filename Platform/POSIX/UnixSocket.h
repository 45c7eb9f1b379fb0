#pragma once

#include <sys/types.h>
#include <sys/un.h>

#include <chrono>
#include <cstddef>
#include <optional>

namespace Platform {

/// Where systems differ about Unix-domain stream sockets. Everything else about them is plain POSIX. Each
/// operation is one system call's worth: it fails with -1 (or nothing) and `errno`, and never repeats an
/// interrupted call.
///
/// Descriptors made here are closed on exec. Safe on any thread.

/// A new socket, not connected, on which writing to a closed peer raises no signal.
int openUnixSocket();

/// `bind` and `connect` to a file. An empty path is no file: ENOENT, where some systems would go by a name
/// outside the file system, which no file mode protects.
int bindUnixSocket(int descriptor, const sockaddr_un& address);
int connectUnixSocket(int descriptor, const sockaddr_un& address);

/// Accepts the next waiting connection and makes it non-blocking. If none is waiting, blocks, or fails with
/// EAGAIN if `listening` is non-blocking.
int acceptUnixSocket(int listening);

/// The effective user of the process at the other end, as it was when it connected; nothing where the system
/// does not say.
std::optional<uid_t> unixSocketPeerUser(int descriptor);

/// Limits each wait of a write to a blocking socket whose peer does not read.
int setSendTimeout(int descriptor, std::chrono::seconds timeout);

/// Writes what the descriptor takes, as `write` does, but without ever raising a signal, for sockets and
/// pipes alike and whatever the process has decided about SIGPIPE.
ssize_t writeWithoutSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
