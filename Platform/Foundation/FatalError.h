#pragma once

#include <string_view>

namespace Platform {

/// Logs `message` and stops the process: for invariants that no valid data can break.
[[noreturn]] void fatalError(std::string_view message);

} // namespace Platform
