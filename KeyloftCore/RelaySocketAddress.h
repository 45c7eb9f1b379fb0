#pragma once

#include <sys/un.h>

#include <string_view>

namespace KeyloftCore {

/// The address of the relay socket at `path`, for both of its ends. Throws RelaySocketError::pathTooLong.
sockaddr_un sockaddrUn(std::string_view path);

} // namespace KeyloftCore
