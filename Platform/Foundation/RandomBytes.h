#pragma once

#include <cstddef>
#include <span>

namespace Platform {

/// Cryptographically secure random bytes from the operating system. Safe on any thread.
class RandomBytes {
public:
    RandomBytes() = delete;

    /// Fills all of `bytes`. Returns false on failure; the contents must not be used then.
    [[nodiscard]] static bool fill(std::span<std::byte> bytes);
};

} // namespace Platform
