#pragma once

#include "Platform/Dispatch/ReadSource.h"
#include "Platform/Dispatch/SerialQueue.h"

#include <poll.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace Platform {

/// A descriptor that is closed with its owner.
class OwnedDescriptor {
public:
    explicit OwnedDescriptor(int descriptor = -1)
        : descriptor_(descriptor) {}
    OwnedDescriptor(const OwnedDescriptor&) = delete;
    OwnedDescriptor& operator=(const OwnedDescriptor&) = delete;
    ~OwnedDescriptor() { reset(-1); }

    int get() const { return descriptor_; }
    void reset(int descriptor);

private:
    int descriptor_;
};

/// What a source is to its queue. Where it is being waited for concerns the queue's thread alone.
struct ReadSource::State {
    enum class Place {
        nowhere,
        polled,
        overflow,
    };

    int descriptor = -1;
    Handler eventHandler;
    Handler cancelHandler;
    std::weak_ptr<SerialQueue::State> queue;

    std::atomic<bool> wanted = false;
    std::atomic<bool> cancelled = false;

    Place place = Place::nowhere;
    std::uint64_t lastFired = 0;

    static constexpr std::size_t notListed = std::numeric_limits<std::size_t>::max();
    /// Where it stands in the queue's list; guarded by the queue's mutex.
    std::size_t index = notListed;
};

/// A queue's inner life: its thread and everything handed over to it.
///
/// The thread waits with poll(), which needs no system call to begin or end waiting for a descriptor:
/// connections that live for a single exchange are the common case. Beyond a handful, the descriptors that
/// have been quiet longest move into an epoll set that poll() sees as one more descriptor, so that many idle
/// ones cost nothing.
struct SerialQueue::State : std::enable_shared_from_this<SerialQueue::State> {
    using Clock = std::chrono::steady_clock;
    using SourceState = ReadSource::State;

    explicit State(std::string label);
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() = default;

    void start();
    bool isCurrent() const;
    void enqueue(Work item);
    void enqueueAt(Clock::time_point due, Work item);
    void add(const std::shared_ptr<SourceState>& source);
    void sourceChanged(const std::shared_ptr<SourceState>& source);
    /// No more work comes; waits for the thread where that is possible.
    void end();

    const std::string label;

private:
    void wakeIfAsleep();
    void run();
    void takeTurn();
    void takeOver();
    void removeFromList(SourceState& source);
    static void retire(SourceState& source);
    void watch(const std::shared_ptr<SourceState>& source);
    void unwatch(const std::shared_ptr<SourceState>& source);
    void makeRoom();
    int waitMilliseconds();
    void wait(int milliseconds);
    void collectOverflow();
    void fire(const std::shared_ptr<SourceState>& source);

    std::mutex mutex_;
    // Guarded by the mutex.
    std::vector<Work> work_;
    std::multimap<Clock::time_point, Work> delayed_;
    std::vector<std::shared_ptr<SourceState>> changed_;
    std::vector<std::shared_ptr<SourceState>> sources_;
    bool ended_ = false;

    /// Whether the thread waits, or is about to, and must be woken. Set with the mutex held.
    std::atomic<bool> asleep_ = false;
    std::thread thread_;
    OwnedDescriptor wake_;
    // The queue's thread's own.
    OwnedDescriptor overflow_;
    std::vector<Work> running_;
    std::vector<std::shared_ptr<SourceState>> changing_;
    std::vector<std::shared_ptr<SourceState>> retiring_;
    std::vector<pollfd> polled_;
    std::vector<std::shared_ptr<SourceState>> polledSources_;
    std::unordered_map<const SourceState*, std::shared_ptr<SourceState>> overflowSources_;
    std::vector<std::shared_ptr<SourceState>> ready_;
    std::uint64_t turn_ = 0;
};

} // namespace Platform
