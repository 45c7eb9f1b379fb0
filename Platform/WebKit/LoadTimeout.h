#pragma once

#include "Platform/Foundation/Timer.h"

#include <functional>
#include <memory>

namespace Platform {

/// The time that a load may take until its page begins to show. Main thread only.
class LoadTimeout {
public:
    /// Not running. `interval` is in seconds; no load times out that has none above 0. `expired` is called
    /// each time the interval has passed.
    LoadTimeout(Timer::Interval interval, std::function<void()> expired);

    /// Begins anew.
    void start();
    /// Begins anew, if it is running or has expired.
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
