#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The listening end of the relay: a Unix-domain socket on which processes of the same user send one request
/// per connection and receive one reply.
///
/// All work, including `onFrame`, runs on a private serial queue ("velde.orvane.keyloft.relay-listener"). A
/// client can block the queue in only one case: if it does not read its reply immediately, it blocks the
/// queue, and therefore other clients and `close`, for at most 3 seconds. The connection is then closed.
/// Several such replies block the queue one after another.
///
/// Only the owner may call `listen` and `close`, from one thread at a time.
class RelayListener {
public:
    /// Sends the reply on one connection as one frame and closes the connection. Thread-safe, and may be
    /// called at any time and through any copy; only the first call has an effect. A no-op after the peer has
    /// disconnected or the listener has been closed or destroyed. Write errors are not reported.
    using Reply = std::function<void(std::string payload)>;
    /// Receives the payload of a request. Must not throw.
    ///
    /// Called again, with a `Reply` for the same connection, for each additional request that the peer sends
    /// before it receives a reply. If several requests arrive in a single read, only the first is received
    /// and the others are dropped. An owner that replies later must limit the number of requests that it
    /// keeps; otherwise a peer can exhaust the owner's memory. The callback does not receive the identity of
    /// the connection. The simplest limit is to keep one request in total and to reply immediately to all
    /// others, which closes their connections.
    using OnFrame = std::function<void(std::string request, Reply reply)>;

    /// Throws std::system_error if no thread or file descriptor is available for the queue.
    RelayListener();
    RelayListener(const RelayListener&) = delete;
    RelayListener& operator=(const RelayListener&) = delete;
    /// Closes the listener. Unlike `close`, the destructor may run on the queue, for example in `onFrame`.
    ~RelayListener();

    /// Removes any existing file at `path`, listens there and calls `onFrame` for each request. Missing
    /// directories of the path are created with mode 0700. The socket has mode 0600. Must be called only
    /// once.
    ///
    /// Changes the umask of the process while the socket file is created. A file that another thread creates
    /// at the same time gets no permissions for group and others. Call this function before starting threads
    /// that create files for other users.
    ///
    /// Throws RelaySocketError::pathContainsNUL before any change is made, Platform::FileError if the
    /// directory cannot be created, RelaySocketError::pathTooLong if the path is 104 bytes or longer, and
    /// RelaySocketError::syscall if "socket", "bind" or "listen" fails. Leaves no file descriptor open if it
    /// throws. Aborts if `onFrame` is empty.
    void listen(const std::string& path, OnFrame onFrame);

    /// Stops listening, writes all replies that were passed to a `Reply` before this call, closes the
    /// remaining connections without a reply, and removes the socket file unless it has been replaced by
    /// another file. A no-op if called before `listen` or a second time. Waits until the queue has completed
    /// its pending work. Aborts if called on the queue.
    void close();

    /// Writes all of `data` to a socket or pipe, retrying after interruptions. Returns false and sets `errno`
    /// if a write fails. If the peer has closed its end, the write fails without raising SIGPIPE.
    static bool writeAll(int fd, std::string_view data);

private:
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace KeyloftCore
