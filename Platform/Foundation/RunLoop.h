#pragma once

#include <functional>

namespace Platform {

/// The run loop of the main thread, which runs timers and the events of GTK or AppKit.
///
/// All functions are for the main thread only, except `perform`.
class RunLoop {
public:
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// The loop of the main thread.
    static RunLoop& main();

    /// Runs the loop until `stop`. May be called again from a callback; each `stop` then ends the innermost
    /// run.
    void run();
    /// Ends the innermost `run` after the current callback. Does nothing outside `run`.
    void stop();

    /// Calls `callback` once on the main thread, in a later iteration of the loop, in the order of the calls
    /// to `perform`. May be called on any thread. `callback` must not throw.
    void perform(std::function<void()> callback);

private:
    RunLoop() = default;
    ~RunLoop() = default;
};

} // namespace Platform
