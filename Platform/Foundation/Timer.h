#pragma once

#include <functional>
#include <memory>

namespace Platform {

/// Calls back on the main run loop after some time, once or again and again. Main thread only.
///
/// Whoever holds the timer owns it: with the last reference gone it is invalidated.
class Timer {
public:
    /// Seconds.
    using Interval = double;

    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer();

    /// A running timer that first fires no earlier than `interval` from now. Anything below a millisecond,
    /// and what is no number, counts as one; the longest interval is 49 days. `callback` may invalidate the
    /// timer or release the last reference to it, and must not throw.
    static std::shared_ptr<Timer> scheduled(Interval interval, bool repeats, std::function<void()> callback);

    /// Stops the timer for good and releases the callback, at the latest when a running call of it returns.
    void invalidate();
    /// False once invalidated; a timer that does not repeat is so before its one callback begins.
    bool isValid() const;

    /// Calls back at once, unless invalidated. A repeating timer keeps its rhythm, any other is used up.
    void fire();

private:
    /// The system's timer, which calls `fired`.
    struct Native;

    Timer();
    void start(Interval interval);
    void stop();
    void fired() noexcept;

    std::unique_ptr<Native> native_;
    /// Shared, so that the call that is running outlives the timer.
    std::shared_ptr<const std::function<void()>> callback_;
    bool repeats_ = false;
};

} // namespace Platform
