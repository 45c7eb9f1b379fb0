#pragma once

#include <filesystem>
#include <memory>

namespace TestSupport {

/// Stands on port 443 of this machine, as in a private network everybody may, in front of a server without
/// encryption, on a thread of its own.
class TLSServer {
public:
    enum class Manner {
        /// Hands everything on to the plain server and back.
        forwards,
        /// Resets each connection as soon as the client says something.
        resets,
    };

    /// `identity` is a file with key and certificate, `plainPort` the plain server's port on loopback. Throws
    /// std::runtime_error when the port is taken.
    TLSServer(const std::filesystem::path& identity, int plainPort, Manner manner = Manner::forwards);
    TLSServer(const TLSServer&) = delete;
    TLSServer& operator=(const TLSServer&) = delete;
    /// Breaks all connections.
    ~TLSServer();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace TestSupport
