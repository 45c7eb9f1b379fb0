#pragma once

#include <string_view>

namespace Platform {

/// Logs `message` and aborts the process. Only for violated invariants, which no valid data can cause. Safe
/// on any thread.
[[noreturn]] void fatalError(std::string_view message);

} // namespace Platform
