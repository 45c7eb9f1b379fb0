#pragma once

#include <functional>
#include <memory>

namespace Platform {

class SerialQueue;

/// Calls back on a queue for as long as a descriptor has something to be read: bytes, a waiting connection,
/// the end of the stream or an error.
///
/// The descriptor is one that can be waited for (a socket, a pipe, a terminal), and has one source at a time.
/// Its owner must keep it open until the cancel handler runs. A descriptor that is closed earlier stops the
/// process where it is noticed.
///
/// A new source waits for `resume`. Cancelling is asynchronous: it does not interrupt a running event
/// handler, but no event handler starts any more after the cancel handler, which is called exactly once, on
/// the queue. Then both handlers are released, there too. Every operation may be called from any thread, also
/// from the source's own handlers, and none is harmful twice. Handlers must not throw.
class ReadSource {
public:
    using Handler = std::function<void()>;

    /// The source does not keep the queue alive: when the queue ends, the source is cancelled.
    ReadSource(SerialQueue& queue, int descriptor);
    ReadSource(const ReadSource&) = delete;
    ReadSource& operator=(const ReadSource&) = delete;
    /// Cancels.
    ~ReadSource();

    /// Both are set before the first `resume`.
    void setEventHandler(Handler handler);
    void setCancelHandler(Handler handler);

    /// Starts calling back, or goes on with it.
    void resume();
    /// Calls back no more until `resume`. Does not count: one `resume` ends any number of these.
    void suspend();
    /// Calls back no more.
    void cancel();
    bool isCancelled() const;

private:
    friend class SerialQueue;
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace Platform
