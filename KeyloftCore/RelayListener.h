#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The listening end of the relay: a Unix-domain socket on which processes of the same user send one request
/// per connection and get one reply.
///
/// All work, including `onFrame`, runs on one private serial queue ("velde.orvane.keyloft.relay-listener").
/// The queue waits for a client in one case only: a reply that the client does not read at once blocks it,
/// and with it the other clients and `close`, for at most 3 seconds. Then the connection is closed. Several
/// such replies block the queue one after the other.
///
/// Only the owner calls `listen` and `close`, from one thread at a time.
class RelayListener {
public:
    /// Sends the reply of one connection as one frame and closes it. May be called from any thread, at any
    /// time, by any copy; the first call counts. Does nothing once the peer has gone or the listener is
    /// closed or destroyed. A failure to write the reply is not reported.
    using Reply = std::function<void(std::string payload)>;
    /// Receives the payload of a request. Must not throw.
    ///
    /// Called again, with a `Reply` to the same connection, for each further request that the peer sends
    /// before it gets a reply. An owner that replies later must bound the requests that it keeps, or a peer
    /// can exhaust its memory. A call does not identify its connection; the simplest bound is to keep one
    /// request in total and to reply to every other at once, which closes its connection.
    using OnFrame = std::function<void(std::string request, Reply reply)>;

    /// Throws std::system_error if no thread or descriptor is available for the queue.
    RelayListener();
    RelayListener(const RelayListener&) = delete;
    RelayListener& operator=(const RelayListener&) = delete;
    /// Closes the listener. Unlike `close`, it may run on the queue, for example in `onFrame`.
    ~RelayListener();

    /// Removes whatever file is at `path`, listens there and calls `onFrame` for each request. The directory
    /// is created if it is missing, with mode 0700 as are those above it; the socket has mode 0600. Call it
    /// only once.
    ///
    /// Changes the file mode creation mask of the whole process while it creates the socket file. A file that
    /// another thread creates meanwhile gets no permissions for group and others, so call this before
    /// starting threads that create files for other users.
    ///
    /// Throws RelaySocketError::pathContainsNUL before anything is changed, Platform::FileError if the
    /// directory cannot be created, and RelaySocketError: `pathTooLong` for a path of 104 bytes or more,
    /// `syscall` for "socket", "bind" and "listen". Leaves nothing open if it throws. Aborts if `onFrame` is
    /// empty.
    void listen(const std::string& path, OnFrame onFrame);

    /// Stops listening, writes the replies given so far, closes all other connections without a reply, and
    /// removes the socket file unless another file has replaced it. Does nothing if called twice or before
    /// `listen`. Waits for the queue; aborts if called on it.
    void close();

    /// Writes all of `data` to a socket or pipe, and continues after interruptions. Returns false, with
    /// `errno` set, if a write fails. A closed peer is an error and raises no signal.
    static bool writeAll(int fd, std::string_view data);

private:
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace KeyloftCore
