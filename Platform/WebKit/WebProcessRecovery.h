#pragma once

#include "Platform/Foundation/URLRequest.h"

#include <chrono>
#include <functional>
#include <optional>

namespace Platform {

/// Decides when a page is reloaded after its web process ended, and which load is repeated. Main thread only.
///
/// The page is reloaded once, when it is next visible. After a second failure within a minute it waits for
/// the user, because the page itself is probably the cause.
class WebProcessRecovery {
public:
    using Clock = std::chrono::steady_clock;

    /// `now` is called for the time of each failure.
    explicit WebProcessRecovery(std::function<Clock::time_point()> now = Clock::now);

    enum class Cause {
        failure,
        /// The program ended the process itself, to make room for another.
        eviction,
    };
    /// The web process ended. `interrupted` is the load that had not committed, which a reload would not
    /// repeat. `hasPage` is false if there is nothing to reload.
    void processEnded(Cause cause, std::optional<URLRequest> interrupted, bool hasPage);
    /// A navigation was requested, so no reload is needed.
    void navigationRequested();
    /// The view has a web process with a page again.
    void pageReturned();

    /// Returns true from the end of the process until a page is back. Views keep reporting the last page.
    bool isPageGone() const { return state_ != State::running; }
    bool reloadsWhenVisible() const { return state_ == State::reloadsWhenVisible; }
    /// The load to repeat instead of a reload, if any.
    const std::optional<URLRequest>& interrupted() const { return interrupted_; }

private:
    enum class State { running, reloadsWhenVisible, waitsForUser };

    std::function<Clock::time_point()> now_;
    State state_ = State::running;
    std::optional<Clock::time_point> lastFailure_;
    std::optional<URLRequest> interrupted_;
};

} // namespace Platform
