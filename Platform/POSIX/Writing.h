#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>

/// What the systems' sides of UnixSocket share about writing. Nobody else includes this.
namespace Platform {

/// `write`, with the SIGPIPE it may raise taken back before anyone sees it.
ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count);

/// Whether a write that took so long was cut short by the socket's send time-out. Kernels report one that got
/// part of its bytes away as a success with fewer bytes.
bool hasTimedOut(int descriptor, std::chrono::steady_clock::duration waited);

} // namespace Platform
