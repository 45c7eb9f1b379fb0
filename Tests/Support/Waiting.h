#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

namespace TestSupport {

/// Long enough for a loaded machine under a sanitizer: only a failing test ever waits so long.
inline constexpr std::chrono::seconds patience(30);

/// Something that happens on another thread, any number of times.
class Event {
public:
    void signal() {
        const std::scoped_lock lock(mutex_);
        ++count_;
        changed_.notify_all();
    }

    /// Whether it has happened `times` times, waiting for it if need be.
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

/// Waits for what nobody announces (a file, a number in /proc): true as soon as it holds.
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
