#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

namespace TestSupport {

/// Default timeout, long enough for an instrumented test on a machine under load. Only failing tests wait
/// this long.
inline constexpr std::chrono::seconds patience(30);

/// Counts the occurrences of an event, and lets another thread wait for them. Thread-safe.
class Event {
public:
    void signal() {
        const std::scoped_lock lock(mutex_);
        ++count_;
        changed_.notify_all();
    }

    /// Waits until the event has occurred at least `times` times. Returns false if `patience` elapses first.
    [[nodiscard]] bool wait(std::size_t times = 1) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, patience, [&] { return count_ >= times; });
    }

    std::size_t count() {
        const std::scoped_lock lock(mutex_);
        return count_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t count_ = 0;
};

/// Polls a condition whose change is not signaled, such as the existence of a file or a count in /proc.
/// Returns true as soon as the condition holds, or false if `patience` elapses first.
template <typename Condition>
[[nodiscard]] bool eventually(const Condition& condition) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace TestSupport
