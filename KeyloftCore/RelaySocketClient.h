#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The connecting end of the relay. Every call blocks. Connect, write, read and close, in this order.
///
/// A value that refers to a descriptor without owning it. Copies share the descriptor, and only `close`
/// closes it.
class RelaySocketClient {
public:
    /// Throws RelaySocketError: `pathContainsNUL`, `pathTooLong`, or `syscall` for "socket" and "connect"
    /// (ENOENT or ECONNREFUSED if no process listens; on macOS ECONNREFUSED also while too many clients wait
    /// to be accepted). There is no time limit.
    static RelaySocketClient connect(const std::string& path);

    /// The connected socket.
    int fd() const { return fd_; }

    /// Sends one frame, of any length. Throws RelaySocketError::syscall("write").
    void writeFrame(std::string_view payload) const;

    /// Returns the first frame that the peer sends, or nothing if the peer closes, fails, sends a frame
    /// beyond the limit, or sends nothing for `timeout` seconds. The time-out is truncated to whole
    /// microseconds, but not below one; 0 means no limit, and a negative time-out reads nothing. It applies
    /// to each read, not to the whole frame. Aborts if it is not finite or does not fit in a `timeval`.
    std::optional<std::string> readFrame(double timeout) const;

    /// Closes the descriptor. To be called once, for all copies.
    void close() const;

private:
    explicit RelaySocketClient(int fd)
        : fd_(fd) {}

    int fd_;
};

} // namespace KeyloftCore
