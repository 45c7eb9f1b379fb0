#pragma once

#include <functional>

namespace Platform {

/// The main thread's loop, on which timers and everything of the toolkit run.
///
/// All operations belong to the main thread, except `perform`.
class RunLoop {
public:
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// The loop of the main thread.
    static RunLoop& main();

    /// Runs the loop until `stop`. May be called again from a callback; each `stop` then ends the innermost
    /// run.
    void run();
    /// Ends the innermost `run` after the present callback. Does nothing outside of one.
    void stop();

    /// Calls `callback` once on the main thread, on a later turn of the loop, in the order of the calls. Any
    /// thread. Callbacks must not throw.
    void perform(std::function<void()> callback);

private:
    RunLoop() = default;
    ~RunLoop() = default;
};

} // namespace Platform
