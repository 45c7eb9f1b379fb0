#pragma once

#include <string_view>

namespace Platform {

/// Ends the process with `message` on standard error: for what a caller must never do, and what cannot be gone on from.
[[noreturn]] void stopProcess(std::string_view message) noexcept;

} // namespace Platform
