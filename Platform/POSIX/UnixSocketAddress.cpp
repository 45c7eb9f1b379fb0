#include "Platform/POSIX/UnixSocketAddress.h"

#include <sys/socket.h>

#include <cstring>

namespace Platform {

std::optional<sockaddr_un> unixSocketAddress(std::string_view path) {
    sockaddr_un address = {};
    static_assert(sizeof address.sun_path > maxUnixSocketPath);
    if (path.size() > maxUnixSocketPath) {
        return std::nullopt;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    return address;
}

} // namespace Platform
