#pragma once

#include <chrono>

namespace TestSupport {

/// Lets the monotonic clock of this process, and so the main loop's timers, be ahead by so much more. The
/// clock never goes back.
void advanceClock(std::chrono::seconds step);

} // namespace TestSupport
