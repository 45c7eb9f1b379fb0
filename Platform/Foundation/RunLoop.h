#pragma once

#include <functional>

namespace Platform {

/// Handles timers and GTK or AppKit events on the main thread. Main thread only, except for `perform`.
class RunLoop {
public:
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// Returns the run loop of the main thread.
    static RunLoop& main();

    /// Runs the loop until `stop` is called. May be called recursively from a callback.
    void run();
    /// Makes the innermost `run` return after the current callback. Does nothing if the loop is not running.
    void stop();

    /// Calls `callback` on the main thread in a later iteration of the loop. May be called on any thread.
    /// Callbacks must not throw and are called in the order in which they were submitted.
    void perform(std::function<void()> callback);

private:
    RunLoop() = default;
    ~RunLoop() = default;
};

} // namespace Platform
