#pragma once

#include <functional>

namespace Platform {

/// The run loop of the main thread, which dispatches timers and the events of GTK or AppKit.
///
/// Main thread only, except for `perform`.
class RunLoop {
public:
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Returns the run loop of the main thread.
    static RunLoop& main();

    /// Runs the loop until `stop` is called. May be called recursively from a callback; each call to `stop`
    /// stops the innermost run.
    void run();
    /// Makes the innermost `run` return after the current callback. Does nothing if the loop is not running.
    void stop();

    /// Calls `callback` once on the main thread, in a later iteration of the loop. Callbacks are called in
    /// the order in which they were passed to `perform`. May be called on any thread. `callback` must not
    /// throw.
    void perform(std::function<void()> callback);

private:
    RunLoop() = default;
    ~RunLoop() = default;
};

} // namespace Platform
