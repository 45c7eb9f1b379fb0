#pragma once

#include <functional>
#include <memory>

namespace Platform {

/// Calls a callback on the main run loop after an interval, once or repeatedly. Main thread only.
///
/// The run loop does not keep the timer alive: releasing the last reference invalidates it.
class Timer {
public:
    /// An interval, in seconds.
    using Interval = double;

    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer();

    /// Creates and starts a timer. It first fires no earlier than `interval` from now. Intervals below one
    /// millisecond, and NaN, are treated as one millisecond; the longest interval is 49 days. `callback` may
    /// invalidate the timer or release the last reference to it, and must not throw.
    static std::shared_ptr<Timer> scheduled(Interval interval, bool repeats, std::function<void()> callback);

    /// Stops the timer permanently and releases the callback. A running callback is released when it returns.
    void invalidate();
    /// Returns false once the timer is invalidated. A one-shot timer is invalidated just before it fires.
    bool isValid() const;

    /// Calls the callback now if the timer is valid. Does not change the schedule of a repeating timer.
    void fire();

private:
    /// The native timer, which calls `fired`.
    struct Native;

    Timer();
    void start(Interval interval);
    void stop();
    void fired() noexcept;

    std::unique_ptr<Native> native_;
    /// Shared, so that a running callback stays alive even if it destroys the timer.
    std::shared_ptr<const std::function<void()>> callback_;
    bool repeats_ = false;
};

} // namespace Platform
