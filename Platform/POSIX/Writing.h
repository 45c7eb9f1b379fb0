#pragma once

#include <sys/types.h>

#include <cstddef>

namespace Platform {

/// Writes as `write` does, but prevents the delivery of SIGPIPE. Prefer `writeWithoutSignal`, which needs
/// fewer system calls for a socket. For Platform's own sources; safe on any thread.
ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
