#pragma once

#include <cstddef>
#include <span>

namespace Platform {

/// Random bytes fit for secrets, from the system's own generator. Safe on any thread.
class RandomBytes {
public:
    RandomBytes() = delete;

    /// Fills `bytes` whole, or returns false, in which case nothing in them may be used.
    [[nodiscard]] static bool fill(std::span<std::byte> bytes);
};

} // namespace Platform
