#pragma once

namespace Platform {

/// One iteration of `RunLoop::run`.
struct RunLoopTurn {
    /// Serves the main run loop until it has handled something.
    void (*wait)() noexcept;
    /// Makes the current `wait`, or the next one, return.
    void (*wake)() noexcept;
};

/// Replaces the iteration of the plain run loop, which does not deliver AppKit's events. Main thread only.
void setRunLoopTurn(RunLoopTurn turn);

} // namespace Platform
