#include "Platform/Foundation/Timer.h"

#include <utility>

namespace Platform {

std::shared_ptr<Timer> Timer::scheduled(Interval interval, bool repeats, std::function<void()> callback) {
    struct PublicTimer : Timer {};
    auto timer = std::make_shared<PublicTimer>();
    timer->callback_ = std::make_shared<const std::function<void()>>(std::move(callback));
    timer->repeats_ = repeats;
    timer->start(interval);
    return timer;
}

void Timer::invalidate() {
    stop();
    // Release the callback last, from a local variable, because objects that it captures may own this timer.
    const auto released = std::exchange(callback_, nullptr);
}

bool Timer::isValid() const { return callback_ != nullptr; }

void Timer::fire() {
    const auto callback = callback_;
    if (callback == nullptr) {
        return;
    }
    if (!repeats_) {
        invalidate();
    }
    (*callback)();
}

/// Keeps the callback in a local variable, because the callback may destroy the timer.
void Timer::fired() noexcept {
    const auto running = repeats_ ? callback_ : std::exchange(callback_, nullptr);
    (*running)();
}

} // namespace Platform
