#pragma once

#include <sys/types.h>

#include <cstddef>

namespace Platform {

/// Like `write`, but does not deliver SIGPIPE. Prefer `writeWithoutSignal`, which needs fewer system calls
/// for sockets. Internal to Platform. May be called on any thread.
ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count);

} // namespace Platform
