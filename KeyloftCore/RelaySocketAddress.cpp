#include "KeyloftCore/RelaySocketAddress.h"

#include "KeyloftCore/RelaySocketError.h"

#include <sys/socket.h>

#include <cstddef>

namespace KeyloftCore {

namespace {

/// The maximum length of the path of a Unix-domain socket, in bytes. This is the limit of macOS. It also
/// applies on other platforms, so that a path is valid either on all platforms or on none.
constexpr std::size_t maximumPath = 103;

} // namespace

void requirePathWithoutNUL(std::string_view path) {
    if (path.contains('\0')) {
        throw RelaySocketError::pathContainsNUL();
    }
}

sockaddr_un sockaddrUn(std::string_view path) {
    requirePathWithoutNUL(path);
    sockaddr_un address = {};
    static_assert(sizeof address.sun_path > maximumPath);
    if (path.size() > maximumPath) {
        throw RelaySocketError::pathTooLong();
    }
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    return address;
}

} // namespace KeyloftCore
