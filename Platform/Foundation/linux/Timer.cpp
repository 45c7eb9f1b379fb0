#include "Platform/Foundation/Timer.h"

#include <glib.h>

#include <cmath>
#include <utility>

namespace Platform {

namespace {

guint milliseconds(Timer::Interval interval) {
    // The condition is negated so that NaN is also treated as one millisecond.
    if (!(interval > 0.001)) {
        return 1;
    }
    const double rounded = std::ceil(interval * 1000.0);
    return rounded >= static_cast<double>(G_MAXUINT) ? G_MAXUINT : static_cast<guint>(rounded);
}

} // namespace

struct Timer::Native {
    guint source = 0;
};

Timer::Timer()
    : native_(std::make_unique<Native>()) {}

Timer::~Timer() { invalidate(); }

void Timer::start(Interval interval) {
    const auto fired = [](gpointer data) -> gboolean {
        auto& timer = *static_cast<Timer*>(data);
        if (timer.repeats_) {
            // The timer and its source may already be destroyed when the callback returns. GLib permits that.
            timer.fired();
            return G_SOURCE_CONTINUE;
        }
        timer.native_->source = 0;
        timer.fired();
        return G_SOURCE_REMOVE;
    };
    native_->source = g_timeout_add(milliseconds(interval), fired, this);
}

void Timer::stop() {
    if (const guint source = std::exchange(native_->source, 0); source != 0) {
        g_source_remove(source);
    }
}

} // namespace Platform
