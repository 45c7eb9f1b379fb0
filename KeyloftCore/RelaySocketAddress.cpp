#include "KeyloftCore/RelaySocketAddress.h"

#include "KeyloftCore/RelaySocketError.h"
#include "Platform/POSIX/UnixSocketAddress.h"

namespace KeyloftCore {

void requirePathWithoutNUL(std::string_view path) {
    if (path.contains('\0')) {
        throw RelaySocketError::pathContainsNUL();
    }
}

sockaddr_un sockaddrUn(std::string_view path) {
    requirePathWithoutNUL(path);
    const auto address = Platform::unixSocketAddress(path);
    if (!address) {
        throw RelaySocketError::pathTooLong();
    }
    return *address;
}

} // namespace KeyloftCore
