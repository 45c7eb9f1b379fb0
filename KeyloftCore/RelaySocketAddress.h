#pragma once

#include <sys/un.h>

#include <string_view>

namespace KeyloftCore {

/// Throws RelaySocketError::pathContainsNUL if `path` contains a NUL byte, at which the kernel would end it.
void requirePathWithoutNUL(std::string_view path);

/// The address of the relay socket at `path`, for both of its ends. Throws RelaySocketError::pathContainsNUL
/// and RelaySocketError::pathTooLong.
sockaddr_un sockaddrUn(std::string_view path);

} // namespace KeyloftCore
