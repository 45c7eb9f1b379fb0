#pragma once

#include <sys/un.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace Platform {

/// The longest path of a Unix-domain socket, in bytes. The same on every system, so that a path that works on
/// one works on all: some systems have room for a few bytes more, none for less.
inline constexpr std::size_t maxUnixSocketPath = 103;

/// All bytes zero but the family and the path, or nothing for a path longer than `maxUnixSocketPath`. The
/// address's length is always that of the whole structure.
std::optional<sockaddr_un> unixSocketAddress(std::string_view path);

} // namespace Platform
