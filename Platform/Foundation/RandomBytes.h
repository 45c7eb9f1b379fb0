#pragma once

#include <cstddef>
#include <span>

namespace Platform {

/// Provides cryptographically secure random bytes from the operating system. Thread-safe.
class RandomBytes {
public:
    RandomBytes() = delete;

    /// Fills `bytes` completely. Returns false on failure, in which case the contents must not be used.
    [[nodiscard]] static bool fill(std::span<std::byte> bytes);
};

} // namespace Platform
