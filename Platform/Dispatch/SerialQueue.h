#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace Platform {

class ReadSource;

/// Runs work one item at a time, in the order in which it was handed over, on a thread that is not the
/// caller's; only `sync` may borrow the caller's, which waits anyway.
///
/// Every operation may be called from any thread, unless it says otherwise. Work must not throw.
///
/// Destroying a queue ends it: work that was handed over by then is still run, work that is not yet due is
/// dropped, and read sources that are not cancelled are cancelled, their cancel handlers included. The
/// destructor waits for all this, except on the queue itself, where it returns at once and the rest follows
/// after the present item.
class SerialQueue {
public:
    using Work = std::function<void()>;

    /// `label` names the queue to people: in debuggers, and in what is printed when the process is stopped.
    /// Throws std::system_error where the system has no thread or descriptor left for it.
    explicit SerialQueue(std::string label);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue();

    const std::string& label() const;

    /// Hands `work` over and returns.
    void async(Work work);

    /// Hands `work` over once `delay` has passed.
    void asyncAfter(std::chrono::milliseconds delay, Work work);

    /// Hands `work` over and returns once it has run. On the queue itself that could never happen: such a
    /// call stops the process with a message.
    void sync(const Work& work);

    /// Whether the caller runs on this queue.
    bool isCurrent() const;

private:
    friend class ReadSource;
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace Platform
