#pragma once

#include "Platform/Foundation/Timer.h"

#include <functional>
#include <memory>

namespace Platform {

/// The time that a load may take until its page begins to show. Main thread only.
class LoadTimeout {
public:
    /// Does not start. `interval` is in seconds; one that is not above 0 never expires. Calls `expired` at
    /// the end of the interval.
    LoadTimeout(Timer::Interval interval, std::function<void()> expired);

    /// Starts, or starts again.
    void start();
    /// Starts again if it is running or has expired.
    void restart();
    void stop() { timer_.reset(); }

    Timer::Interval interval() const { return interval_; }
    bool hasExpired() const { return timer_ && !timer_->isValid(); }

private:
    Timer::Interval interval_;
    std::function<void()> expired_;
    std::shared_ptr<Timer> timer_;
};

} // namespace Platform
