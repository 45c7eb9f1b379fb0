#pragma once

#include "Platform/Dispatch/ReadSource.h"
#include "Platform/Dispatch/SerialQueue.h"
#include "Platform/POSIX/Descriptor.h"

#include <poll.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Platform {

/// The state that a source shares with its queue.
struct ReadSource::State {
    int descriptor = -1;
    Handler eventHandler;
    Handler cancelHandler;
    std::weak_ptr<SerialQueue::State> queue;

    std::atomic<bool> wanted = false;
    std::atomic<bool> cancelled = false;
};

/// A queue's thread and its work. The thread waits with poll(), because adding or removing a descriptor then
/// needs no system call, and most connections last for a single exchange.
struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State> {
    using Clock = std::chrono::steady_clock;
    using Source = std::shared_ptr<ReadSource::State>;

    explicit State(std::string label);
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() = default;

    void start();
    bool isCurrent() const;
    void enqueue(Work item);
    void enqueueAt(Clock::time_point due, Work item);
    void add(const Source& source);
    /// Called after a source has been resumed, suspended or cancelled.
    void sourceChanged();
    /// Cancels all sources. Waits until the thread has run its work and exited, unless called on that thread.
    void end();

    const std::string label;

private:
    void wakeIfAsleep();
    void run();
    void takeTurn();
    bool prepareToWait();
    int waitMilliseconds() const;
    void wait();

    std::mutex mutex_;
    // Guarded by the mutex.
    std::vector<Work> work_;
    std::multimap<Clock::time_point, Work> delayed_;
    /// All sources whose cancel handlers have not been called.
    std::vector<Source> sources_;
    bool ended_ = false;

    /// True from just before the thread waits until it is woken. Set to true only with the mutex held.
    std::atomic<bool> asleep_ = false;
    std::thread thread_;
    Descriptor wake_;
    // Used only on the queue's thread.
    int timeout_ = 0;
    /// The descriptors of `waiting_`, followed by that of `wake_`.
    std::vector<pollfd> polled_;
    std::vector<Source> waiting_;
};

} // namespace Platform
