#pragma once

#include <sys/un.h>

#include <string_view>

namespace KeyloftCore {

/// Throws RelaySocketError::pathContainsNUL if `path` contains a NUL byte, which would terminate the path in
/// a system call.
void requirePathWithoutNUL(std::string_view path);

/// Returns the address of the relay socket at `path`, for listening and for connecting. Throws
/// RelaySocketError::pathContainsNUL and RelaySocketError::pathTooLong.
sockaddr_un sockaddrUn(std::string_view path);

} // namespace KeyloftCore
