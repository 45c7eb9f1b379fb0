#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

namespace TestSupport {

/// Long enough for a loaded machine and a sanitizer. Only a failing test waits this long.
inline constexpr std::chrono::seconds patience(30);

/// An event on another thread that can occur any number of times.
class Event {
public:
    void signal() {
        const std::scoped_lock lock(mutex_);
        ++count_;
        changed_.notify_all();
    }

    /// Waits until the event has occurred `times` times. Returns false after `patience`.
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

/// Polls a condition that no event announces, such as a file or a count in /proc. Returns true as soon as it
/// holds, and false after `patience`.
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
