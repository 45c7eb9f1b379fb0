#pragma once

#include <string_view>

namespace Platform {

/// Logs `message` and stops the process: for invariants that no valid data can break. Safe on any thread.
[[noreturn]] void fatalError(std::string_view message);

} // namespace Platform
