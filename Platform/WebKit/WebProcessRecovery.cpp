#include "Platform/WebKit/WebProcessRecovery.h"

#include <utility>

namespace Platform {

namespace {

constexpr auto repeatedFailure = std::chrono::minutes(1);

} // namespace

WebProcessRecovery::WebProcessRecovery(std::function<Clock::time_point()> now)
    : now_(std::move(now)) {}

void WebProcessRecovery::processEnded(Cause cause, std::optional<URLRequest> interrupted, bool hasPage) {
    bool isRepeated = false;
    if (cause == Cause::failure) {
        const auto now = now_();
        isRepeated = lastFailure_ && now - *lastFailure_ < repeatedFailure;
        lastFailure_ = now;
    }
    state_ = hasPage && !isRepeated ? State::reloadsWhenVisible : State::waitsForUser;
    interrupted_ = std::move(interrupted);
}

void WebProcessRecovery::navigationRequested() {
    if (state_ == State::reloadsWhenVisible) {
        state_ = State::waitsForUser;
    }
}

void WebProcessRecovery::pageReturned() {
    state_ = State::running;
    interrupted_.reset();
}

} // namespace Platform
