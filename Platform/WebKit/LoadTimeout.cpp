#include "Platform/WebKit/LoadTimeout.h"

#include <utility>

namespace Platform {

LoadTimeout::LoadTimeout(Timer::Interval interval, std::function<void()> expired)
    : interval_(interval)
    , expired_(std::move(expired)) {}

void LoadTimeout::start() {
    if (interval_ > 0) {
        timer_ = Timer::scheduled(interval_, false, expired_);
    }
}

void LoadTimeout::restart() {
    if (timer_) {
        start();
    }
}

} // namespace Platform
