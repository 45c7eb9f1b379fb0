#pragma once

#include <functional>
#include <memory>

namespace Platform {

class SerialQueue;

/// Calls a handler on a queue while a descriptor is readable: it has bytes, a waiting connection, the end of
/// the stream or an error.
///
/// The descriptor must support polling (a socket, a pipe or a terminal) and may have one source at a time.
/// Its owner must keep it open until the cancel handler runs. Closing it earlier aborts the process when the
/// queue detects it.
///
/// A new source is inactive until `resume`. Cancellation is asynchronous: it does not interrupt a running
/// event handler, but no event handler starts after the cancel handler, which is called exactly once, on the
/// queue. Both handlers are then released, also on the queue. All functions may be called on any thread,
/// including from the source's own handlers, and may be called repeatedly. Handlers must not throw.
class ReadSource {
public:
    using Handler = std::function<void()>;

    /// The source does not keep the queue alive: when the queue ends, the source is cancelled.
    ReadSource(SerialQueue& queue, int descriptor);
    ReadSource(const ReadSource&) = delete;
    ReadSource& operator=(const ReadSource&) = delete;
    /// Cancels.
    ~ReadSource();

    /// Both handlers must be set before the first `resume`.
    void setEventHandler(Handler handler);
    void setCancelHandler(Handler handler);

    /// Starts or continues to call the event handler.
    void resume();
    /// Stops calling the event handler until `resume`. Calls are not counted: one `resume` ends any number of
    /// suspensions.
    void suspend();
    /// Stops calling the event handler for good. The cancel handler follows on the queue.
    void cancel();
    bool isCancelled() const;

private:
    friend class SerialQueue;
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace Platform
