#pragma once

#include <functional>
#include <memory>

namespace Platform {

/// Calls back on the main run loop after an interval, once or repeatedly. Main thread only.
///
/// The run loop does not keep a timer alive: releasing the last reference invalidates it.
class Timer {
public:
    /// Seconds.
    using Interval = double;

    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer();

    /// Returns a running timer that first fires no earlier than `interval` from now. Intervals below one
    /// millisecond, and NaN, count as one millisecond; the longest interval is 49 days. `callback` may
    /// invalidate the timer or release the last reference to it, and must not throw.
    static std::shared_ptr<Timer> scheduled(Interval interval, bool repeats, std::function<void()> callback);

    /// Stops the timer for good and releases the callback, at the latest when a running call of it returns.
    void invalidate();
    /// Returns false once the timer is invalidated. A timer that does not repeat is invalidated before its
    /// callback begins.
    bool isValid() const;

    /// Calls back immediately, unless invalidated. A repeating timer keeps its schedule; any other is
    /// invalidated.
    void fire();

private:
    /// The native timer, which calls `fired`.
    struct Native;

    Timer();
    void start(Interval interval);
    void stop();
    void fired() noexcept;

    std::unique_ptr<Native> native_;
    /// Shared, so that a running callback outlives the timer.
    std::shared_ptr<const std::function<void()>> callback_;
    bool repeats_ = false;
};

} // namespace Platform
