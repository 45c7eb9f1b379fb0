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
    /// The run loop retains the timer until it is invalidated. An invalidated timer does not fire.
    NSTimer* timer = nil;
};

Timer::Timer()
    : native_(std::make_unique<Native>()) {}

Timer::~Timer() { invalidate(); }

void Timer::start(Interval interval) {
    // The condition is negated so that NaN is also treated as the shortest interval.
    const Interval usable = !(interval > shortest) ? shortest : std::min(interval, longest);
    native_->timer = [NSTimer timerWithTimeInterval:usable
                                            repeats:repeats_ ? YES : NO
                                              block:^(NSTimer* /*unused*/) {
                                                  this->fired();
                                              }];
    // Use the common modes, so that the timer also fires while a menu or an alert runs the loop.
    [NSRunLoop.mainRunLoop addTimer:native_->timer forMode:NSRunLoopCommonModes];
}

void Timer::stop() { [std::exchange(native_->timer, nil) invalidate]; }

} // namespace Platform
