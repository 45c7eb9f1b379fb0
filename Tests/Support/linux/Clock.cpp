#include "Tests/Support/Clock.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>

namespace {

std::atomic<std::time_t> ahead = 0;

} // namespace

// Overrides the C library's clock_gettime() for the whole process, including GTK and GLib.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && clock == CLOCK_MONOTONIC) {
        time->tv_sec += ahead;
    }
    return result;
}

namespace TestSupport {

void advanceClock(std::chrono::seconds step) { ahead += step.count(); }

} // namespace TestSupport
