#pragma once

#include "Platform/Foundation/URLRequest.h"

#include <chrono>
#include <functional>
#include <optional>

namespace Platform {

/// Decides when to reload a page, and which load to repeat, after its web process exits. Main thread only.
///
/// The page is reloaded once, as soon as it is visible. After a second failure within a minute, the page is
/// not reloaded until the user requests it, because the page itself is probably the cause.
class WebProcessRecovery {
public:
    using Clock = std::chrono::steady_clock;

    /// `now` returns the current time. It is called on each failure.
    explicit WebProcessRecovery(std::function<Clock::time_point()> now = Clock::now);

    enum class Cause {
        failure,
        /// The application terminated the process to make room for another process.
        eviction,
    };
    /// Called when the web process has terminated. `interrupted` is the load that had not committed yet;
    /// reloading the page would not repeat it. `hasPage` is false if there is nothing to reload.
    void processEnded(Cause cause, std::optional<URLRequest> interrupted, bool hasPage);
    /// Called when a navigation is requested. The page is then no longer reloaded automatically.
    void navigationRequested();
    /// Called when the view has a page in a running web process again.
    void pageReturned();

    /// Returns true from `processEnded` until `pageReturned`. Views then still report the last URL and title.
    bool isPageGone() const { return state_ != State::running; }
    bool reloadsWhenVisible() const { return state_ == State::reloadsWhenVisible; }
    /// The load to repeat instead of reloading the page, if any.
    const std::optional<URLRequest>& interrupted() const { return interrupted_; }

private:
    enum class State { running, reloadsWhenVisible, waitsForUser };

    std::function<Clock::time_point()> now_;
    State state_ = State::running;
    std::optional<Clock::time_point> lastFailure_;
    std::optional<URLRequest> interrupted_;
};

} // namespace Platform
