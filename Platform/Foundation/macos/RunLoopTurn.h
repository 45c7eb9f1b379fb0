#pragma once

namespace Platform {

/// One iteration of `RunLoop::run`.
struct RunLoopTurn {
    /// Runs the main run loop until it has handled an event.
    void (*wait)() noexcept;
    /// Makes the current call to `wait` return, or the next call if `wait` is not running.
    void (*wake)() noexcept;
};

/// Replaces the default iteration, which does not deliver AppKit's events. Main thread only.
void setRunLoopTurn(RunLoopTurn turn);

} // namespace Platform
