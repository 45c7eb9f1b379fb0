#pragma once

#include <filesystem>
#include <memory>

namespace TestSupport {

/// A TLS proxy on loopback port 443 for a server without encryption. Runs on a thread of its own. In a
/// private network, every user may listen on this port.
class TLSServer {
public:
    enum class Manner {
        /// Forwards all data to the plain server and back.
        forwards,
        /// Resets each connection as soon as the client sends something.
        resets,
    };

    /// `identity` is a file with a key and a certificate. `plainPort` is the plain server's port on loopback.
    /// Throws std::runtime_error if port 443 is in use.
    TLSServer(const std::filesystem::path& identity, int plainPort, Manner manner = Manner::forwards);
    TLSServer(const TLSServer&) = delete;
    TLSServer& operator=(const TLSServer&) = delete;
    /// Closes all connections.
    ~TLSServer();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace TestSupport
