#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The connecting end of the relay. All functions block. Connect, write, read and close, in this order.
///
/// A plain value type that refers to a file descriptor without owning it. Copies share the descriptor, which
/// is closed only by `close`.
class RelaySocketClient {
public:
    /// Connects to the socket at `path`, without a time limit. Throws RelaySocketError::pathContainsNUL,
    /// RelaySocketError::pathTooLong, or RelaySocketError::syscall if "socket" or "connect" fails.
    ///
    /// "connect" fails with ENOENT or ECONNREFUSED if no process is listening. On macOS, it also fails with
    /// ECONNREFUSED while too many clients are waiting to be accepted.
    static RelaySocketClient connect(const std::string& path);

    /// The file descriptor of the connected socket.
    int fd() const { return fd_; }

    /// Sends one frame of any size. Throws RelaySocketError::syscall("write").
    void writeFrame(std::string_view payload) const;

    /// Returns the payload of the first frame that the peer sends. Returns nothing if the peer closes the
    /// connection, reading fails, the frame exceeds the limit, or the peer sends nothing for `timeout`
    /// seconds.
    ///
    /// The timeout applies to each read, not to the whole frame. It is truncated to whole microseconds, but
    /// is at least one microsecond; 0 means no timeout. If it is negative, the function returns nothing
    /// without reading. Aborts if it is not finite or does not fit in a `timeval`.
    std::optional<std::string> readFrame(double timeout) const;

    /// Closes the file descriptor. Must be called on exactly one of the copies.
    void close() const;

private:
    explicit RelaySocketClient(int fd)
        : fd_(fd) {}

    int fd_;
};

} // namespace KeyloftCore
