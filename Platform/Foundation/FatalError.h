#pragma once

#include <string_view>

namespace Platform {

/// Logs `message` and aborts the process. Use it only for violated invariants. Thread-safe.
[[noreturn]] void fatalError(std::string_view message);

} // namespace Platform
