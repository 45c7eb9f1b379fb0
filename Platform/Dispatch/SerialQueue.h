#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace Platform {

class ReadSource;

/// Runs work items one at a time, in the order of their submission, on a thread other than the caller's. Only
/// `sync` may run its work on the caller's thread, which waits for the work anyway.
///
/// All functions may be called on any thread. Work must not throw.
///
/// When a queue is destroyed, it still runs the submitted work, but drops delayed work that is not due. It
/// cancels the remaining read sources and calls their cancel handlers. The destructor waits until this is
/// complete, unless it is called on the queue itself.
class SerialQueue {
public:
    using Work = std::function<void()>;

    /// `label` identifies the queue in debuggers and error messages. Throws std::system_error on failure.
    explicit SerialQueue(std::string label);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue();

    const std::string& label() const;

    /// Submits `work` and returns immediately.
    void async(Work work);

    /// Submits `work` once `delay` has elapsed.
    void asyncAfter(std::chrono::milliseconds delay, Work work);

    /// Submits `work` and waits until it has run. A call on the queue itself is a fatal error.
    void sync(const Work& work);

    /// Returns true if called on this queue.
    bool isCurrent() const;

private:
    friend class ReadSource;
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace Platform
