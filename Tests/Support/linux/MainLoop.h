#pragma once

#include <glib.h>

#include <chrono>
#include <cstddef>

namespace TestSupport {

/// Runs the main loop until `condition` holds; false when it does not within `limit`. The condition is asked
/// after every turn of the loop, and often enough besides for what other threads and processes change.
template <typename Condition>
[[nodiscard]] bool runUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    constexpr guint pollInterval = 5;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    // Behind all else: a condition that takes its time must not keep idle sources from their turn.
    const guint poll = g_timeout_add_full(
        G_PRIORITY_LOW + 1, pollInterval, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr,
        nullptr);
    bool holds = condition();
    while (!holds && std::chrono::steady_clock::now() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
        holds = condition();
    }
    g_source_remove(poll);
    return holds;
}

/// Runs the main loop until nothing is left that could run at once: whatever was put off is done then.
inline void runPending() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

/// Runs at most so many turns of the main loop, and none that would have to wait.
inline void runTurns(std::size_t count) {
    while (count > 0 && g_main_context_iteration(nullptr, FALSE)) {
        --count;
    }
}

} // namespace TestSupport
