#pragma once

#include <functional>
#include <memory>

namespace Platform {

class SerialQueue;

/// Calls a handler on a queue while a file descriptor is readable, that is, while it has data, a pending
/// connection, an end of stream or an error.
///
/// The descriptor must support polling (a socket, a pipe or a terminal) and can have only one source at a
/// time. Its owner must keep it open until the cancel handler is called. If the queue detects that the
/// descriptor was closed earlier, it aborts the process.
///
/// A new source is inactive until `resume` is called. Cancellation is asynchronous: a running event handler
/// is not interrupted. The cancel handler is called exactly once, on the queue, and the event handler is not
/// called after it. Both handlers are then destroyed, also on the queue. All functions may be called
/// repeatedly and on any thread, including from the source's own handlers. Handlers must not throw.
class ReadSource {
public:
    using Handler = std::function<void()>;

    /// The source does not keep the queue alive. It is cancelled when the queue is destroyed.
    ReadSource(SerialQueue& queue, int descriptor);
    ReadSource(const ReadSource&) = delete;
    ReadSource& operator=(const ReadSource&) = delete;
    /// Cancels the source.
    ~ReadSource();

    /// Both handlers must be set before the first `resume`.
    void setEventHandler(Handler handler);
    void setCancelHandler(Handler handler);

    /// Starts or resumes calling the event handler.
    void resume();
    /// Stops calling the event handler until `resume` is called. Repeated calls have no effect.
    void suspend();
    /// Permanently stops calling the event handler. The cancel handler is then called on the queue.
    void cancel();
    bool isCancelled() const;

private:
    friend class SerialQueue;
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace Platform
