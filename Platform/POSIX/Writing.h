#pragma once

#include <sys/types.h>

#include <cstddef>

/// What the systems' sides of UnixSocket share about writing. Nobody else includes this.
namespace Platform {

/// `write`, with the SIGPIPE it may raise taken back before anyone sees it.
ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
