#pragma once

namespace Platform {

/// One iteration of `RunLoop::run`.
struct RunLoopTurn {
    /// Serves the main run loop until it has handled something.
    void (*wait)() noexcept;
    /// Makes a `wait` that is under way, or the next one, return.
    void (*wake)() noexcept;
};

/// Replaces the plain run loop's own turn, for events that a plain run loop does not deliver. Main thread
/// only.
void setRunLoopTurn(RunLoopTurn turn);

} // namespace Platform
