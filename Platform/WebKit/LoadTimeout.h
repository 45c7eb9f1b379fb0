#pragma once

#include "Platform/Foundation/Timer.h"

#include <functional>
#include <memory>

namespace Platform {

/// Limits the time from the start of a load to the commit of its page. Main thread only.
class LoadTimeout {
public:
    /// Creates a stopped timeout. `expired` is called `interval` seconds after the start; never if `interval`
    /// is not positive.
    LoadTimeout(Timer::Interval interval, std::function<void()> expired);

    /// Starts or restarts the interval.
    void start();
    /// Restarts the interval if it is running or has expired.
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
