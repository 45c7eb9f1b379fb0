#pragma once

#include <sys/types.h>

#include <cstddef>

/// Shared by the implementations of UnixSocket. Do not include it elsewhere.
namespace Platform {

/// `write`, with the SIGPIPE it may raise taken back before anyone sees it.
ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
