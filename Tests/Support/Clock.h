#pragma once

#include <chrono>

namespace TestSupport {

/// Advances the monotonic clock of this process, and with it the main loop's timers. It is never set back.
void advanceClock(std::chrono::seconds step);

} // namespace TestSupport
