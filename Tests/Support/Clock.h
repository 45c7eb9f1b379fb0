#pragma once

#include <chrono>

namespace TestSupport {

/// Advances the monotonic clock of this process, and therefore the main loop's timers. The clock cannot be
/// set back.
void advanceClock(std::chrono::seconds step);

} // namespace TestSupport
