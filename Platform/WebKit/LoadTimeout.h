#pragma once

#include "Platform/Foundation/Timer.h"

#include <functional>
#include <memory>

namespace Platform {

/// Limits the time between the start of a load and the commit of its page. Main thread only.
class LoadTimeout {
public:
    /// Creates a timeout that is not running. `expired` is called `interval` seconds after the timeout is
    /// started or restarted. If `interval` is not positive, the timeout never expires.
    LoadTimeout(Timer::Interval interval, std::function<void()> expired);

    /// Starts the timeout, or restarts it if it is running or has expired.
    void start();
    /// Restarts the timeout if it is running or has expired. Does nothing if it is stopped.
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
