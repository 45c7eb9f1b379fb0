#include "Platform/Foundation/Timer.h"

#include <glib.h>

#include <cmath>
#include <utility>

namespace Platform {

namespace {

guint milliseconds(Timer::Interval interval) {
    // Written so that NaN takes the first way out.
    if (!(interval > 0.001)) {
        return 1;
    }
    const double rounded = std::ceil(interval * 1000.0);
    return rounded >= static_cast<double>(G_MAXUINT) ? G_MAXUINT : static_cast<guint>(rounded);
}

} // namespace

struct Timer::Implementation {
    /// Shared, so that the call that is running outlives the timer.
    std::shared_ptr<const std::function<void()>> callback;
    guint source = 0;
    bool repeats = false;

    static gboolean fired(gpointer data) noexcept {
        auto& implementation = *static_cast<Implementation*>(data);
        if (implementation.repeats) {
            const auto running = implementation.callback;
            // The timer may be gone when this returns, and with it the source; GLib allows for that.
            (*running)();
            return G_SOURCE_CONTINUE;
        }
        implementation.source = 0;
        const auto running = std::exchange(implementation.callback, nullptr);
        (*running)();
        return G_SOURCE_REMOVE;
    }
};

Timer::Timer()
    : implementation_(std::make_unique<Implementation>()) {}

Timer::~Timer() { invalidate(); }

std::shared_ptr<Timer> Timer::scheduled(Interval interval, bool repeats, std::function<void()> callback) {
    struct PublicTimer : Timer {};
    auto timer = std::make_shared<PublicTimer>();
    auto& implementation = *timer->implementation_;
    implementation.callback = std::make_shared<const std::function<void()>>(std::move(callback));
    implementation.repeats = repeats;
    implementation.source = g_timeout_add(milliseconds(interval), &Implementation::fired, &implementation);
    return timer;
}

void Timer::invalidate() {
    if (const guint source = std::exchange(implementation_->source, 0); source != 0) {
        g_source_remove(source);
    }
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
