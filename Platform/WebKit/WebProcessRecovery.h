#pragma once

#include "Platform/Foundation/URLRequest.h"

#include <chrono>
#include <functional>
#include <optional>

namespace Platform {

/// Decides when and with what a page comes back after its web process ended. Main thread only.
///
/// It is reloaded once, when it is next visible. After a second end within a minute the page itself is to
/// blame, and it waits for the user.
class WebProcessRecovery {
public:
    using Clock = std::chrono::steady_clock;

    /// `now` tells the time.
    explicit WebProcessRecovery(std::function<Clock::time_point()> now = Clock::now);

    enum class Cause {
        failure,
        /// The program ended the process itself, to make room for another.
        eviction,
    };
    /// The web process ended. `interrupted` is the load of which nothing was committed yet: a reload could
    /// not bring it back. `hasPage` is false when there is nothing to reload.
    void processEnded(Cause cause, std::optional<URLRequest> interrupted, bool hasPage);
    /// Somebody asked for a navigation, which makes the reload unnecessary.
    void navigationRequested();
    /// There is a web process again, and a page in it.
    void pageReturned();

    /// Whether the page that was shown last is still reported, for the engine has forgotten it.
    bool isPageGone() const { return state_ != State::running; }
    bool reloadsWhenVisible() const { return state_ == State::reloadsWhenVisible; }
    /// What to load in place of a reload, if anything.
    const std::optional<URLRequest>& interrupted() const { return interrupted_; }

private:
    enum class State { running, reloadsWhenVisible, waitsForUser };

    std::function<Clock::time_point()> now_;
    State state_ = State::running;
    std::optional<Clock::time_point> lastFailure_;
    std::optional<URLRequest> interrupted_;
};

} // namespace Platform
