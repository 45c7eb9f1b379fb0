#include "Platform/Foundation/Timer.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <utility>

namespace Platform {

namespace {

constexpr Timer::Interval shortest = 0.001;
constexpr Timer::Interval longest = 49.0 * 24 * 60 * 60;

} // namespace

struct Timer::Native {
    /// Held by the run loop until it is invalidated, and not fired after that.
    NSTimer* timer = nil;
};

Timer::Timer()
    : native_(std::make_unique<Native>()) {}

Timer::~Timer() { invalidate(); }

void Timer::start(Interval interval) {
    // Written so that what is no number takes the first way.
    const Interval usable = !(interval > shortest) ? shortest : std::min(interval, longest);
    native_->timer = [NSTimer timerWithTimeInterval:usable
                                            repeats:repeats_ ? YES : NO
                                              block:^(NSTimer* /*unused*/) {
                                                  this->fired();
                                              }];
    // The common modes: a menu or an alert that runs the loop its own way holds no timer up.
    [NSRunLoop.mainRunLoop addTimer:native_->timer forMode:NSRunLoopCommonModes];
}

void Timer::stop() { [std::exchange(native_->timer, nil) invalidate]; }

} // namespace Platform
