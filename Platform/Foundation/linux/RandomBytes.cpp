#include "Platform/Foundation/RandomBytes.h"

#include <sys/random.h>

#include <cerrno>

namespace Platform {

bool RandomBytes::fill(std::span<std::byte> bytes) {
    while (!bytes.empty()) {
        // getrandom may fill a large request partially, or be interrupted before the generator is seeded.
        const ssize_t count = getrandom(bytes.data(), bytes.size(), 0);
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace Platform
