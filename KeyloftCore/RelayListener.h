#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The listening end of the relay: a Unix-domain socket through which processes of the same user ask one
/// question per connection and get one answer.
///
/// All work, `onFrame` included, runs on one private serial queue ("velde.orvane.keyloft.relay-listener"). It
/// waits for a client in one case only: a reply that the client does not read at once holds up the queue, and
/// so the other clients and `close`, for at most 3 seconds; then the connection is closed. `listen` and
/// `close` belong to the owner, one thread at a time.
class RelayListener {
public:
    /// Sends the reply of one connection as one frame and closes it. May be called from any thread, at any
    /// time, by any copy; the first call counts. Does nothing once the peer has gone or the listener is
    /// closed or destroyed. A reply that cannot be written is not reported.
    using Reply = std::function<void(std::string payload)>;
    /// Receives the payload of a request. Must not throw.
    ///
    /// Called again, with a `Reply` to the same connection, for each further request that the peer sends
    /// before it gets a reply, as fast as it sends them. An owner that replies later must keep at most one
    /// pending request per connection, or its memory grows with every call. A call does not name its
    /// connection: the simple way is to hold one request in all and to reply to any other at once, which
    /// closes its connection.
    using OnFrame = std::function<void(std::string request, Reply reply)>;

    /// Throws std::system_error where the system has no thread or descriptor left for the queue.
    RelayListener();
    RelayListener(const RelayListener&) = delete;
    RelayListener& operator=(const RelayListener&) = delete;
    /// Closes. Unlike `close` it may happen on the queue, in `onFrame` above all.
    ~RelayListener();

    /// Removes whatever file is at `path`, listens there and calls `onFrame` for each request. The directory
    /// is created if it is missing, with mode 0700 as are those above it; the socket has mode 0600. Called
    /// once.
    ///
    /// Sets the file mode creation mask of the whole process for the moment in which the socket's file is
    /// made. A file that another thread creates in that moment gets no permissions for group and others, so
    /// call this before starting threads that create files for others.
    ///
    /// Throws RelaySocketError::pathContainsNUL before anything is changed, Platform::FileError if the
    /// directory cannot be created, and RelaySocketError: `pathTooLong` for a path of 104 bytes or more,
    /// `syscall` for "socket", "bind" and "listen". Nothing stays open then. An empty `onFrame` stops the
    /// process.
    void listen(const std::string& path, OnFrame onFrame);

    /// Stops listening, writes the replies that were given before, closes every other connection without one,
    /// and removes the socket file if it is still the one that this listener made. Harmless twice, or before
    /// `listen`. Waits for the queue, hence never called on it: that stops the process.
    void close();

    /// Writes all of `data` to a socket or pipe, going on after interruptions. False, with `errno`, once that
    /// fails; a closed peer is an error and no signal.
    static bool writeAll(int fd, std::string_view data);

private:
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace KeyloftCore
