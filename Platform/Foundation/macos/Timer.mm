#include "Platform/Foundation/Timer.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <utility>

namespace Platform {

namespace {

constexpr Timer::Interval shortest = 0.001;
constexpr Timer::Interval longest = 49.0 * 24 * 60 * 60;

} // namespace

struct Timer::Implementation {
    /// Shared, so that the call that is running outlives the timer.
    std::shared_ptr<const std::function<void()>> callback;
    /// Held by the run loop until it is invalidated, and not fired after that.
    NSTimer* timer = nil;
    bool repeats = false;

    void fired() noexcept {
        // The timer may be gone when the callback returns.
        const auto running = repeats ? callback : std::exchange(callback, nullptr);
        (*running)();
    }
};

Timer::Timer()
    : implementation_(std::make_unique<Implementation>()) {}

Timer::~Timer() { invalidate(); }

std::shared_ptr<Timer> Timer::scheduled(Interval interval, bool repeats, std::function<void()> callback) {
    struct PublicTimer : Timer {};
    auto timer = std::make_shared<PublicTimer>();
    Implementation* const implementation = timer->implementation_.get();
    implementation->callback = std::make_shared<const std::function<void()>>(std::move(callback));
    implementation->repeats = repeats;
    // Written so that what is no number takes the first way.
    const Interval usable = !(interval > shortest) ? shortest : std::min(interval, longest);
    implementation->timer = [NSTimer timerWithTimeInterval:usable
                                                   repeats:repeats ? YES : NO
                                                     block:^(NSTimer* /*unused*/) {
                                                         implementation->fired();
                                                     }];
    // The common modes: a menu or an alert that runs the loop its own way holds no timer up.
    [NSRunLoop.mainRunLoop addTimer:implementation->timer forMode:NSRunLoopCommonModes];
    return timer;
}

void Timer::invalidate() {
    [std::exchange(implementation_->timer, nil) invalidate];
    // Released last and from a local: what the callback holds may own this timer.
    const auto released = std::exchange(implementation_->callback, nullptr);
}

bool Timer::isValid() const { return implementation_->callback != nullptr; }

void Timer::fire() {
    const auto callback = implementation_->callback;
    if (callback == nullptr) {
        return;
    }
    if (!implementation_->repeats) {
        invalidate();
    }
    (*callback)();
}

} // namespace Platform
