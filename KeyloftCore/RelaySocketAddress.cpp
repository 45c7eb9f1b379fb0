#include "KeyloftCore/RelaySocketAddress.h"

#include "KeyloftCore/RelaySocketError.h"
#include "Platform/POSIX/UnixSocketAddress.h"

namespace KeyloftCore {

sockaddr_un sockaddrUn(std::string_view path) {
    const auto address = Platform::unixSocketAddress(path);
    if (!address) {
        throw RelaySocketError::pathTooLong();
    }
    return *address;
}

} // namespace KeyloftCore
