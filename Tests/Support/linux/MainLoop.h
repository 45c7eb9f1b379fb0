#pragma once

#include <glib.h>

#include <chrono>
#include <cstddef>

namespace TestSupport {

/// Runs the main loop until `condition` is true. Returns false if the condition is still false after `limit`.
/// Checks the condition after each iteration, and every few milliseconds to detect changes made by other
/// threads and processes.
template <typename Condition>
[[nodiscard]] bool runUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    constexpr guint pollInterval = 5;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    // Poll with the lowest priority, so that a slow condition does not starve idle sources.
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

/// Runs the main loop until no event source is ready. All pending idle callbacks are called.
inline void runPending() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

/// Runs at most `count` iterations of the main loop, without blocking.
inline void runTurns(std::size_t count) {
    while (count > 0 && g_main_context_iteration(nullptr, FALSE)) {
        --count;
    }
}

} // namespace TestSupport
