#pragma once

#include <filesystem>
#include <memory>

namespace TestSupport {

/// A proxy that accepts TLS connections on port 443 of the loopback interface for a server that does not
/// support TLS. It runs on its own thread. In a private network, unprivileged processes may listen on this
/// port.
class TLSServer {
public:
    enum class Manner {
        /// Forwards all data in both directions.
        forwards,
        /// Resets each connection as soon as the client sends data.
        resets,
    };

    /// `identity` is a file with a private key and a certificate. `plainPort` is the loopback port of the
    /// unencrypted server. Throws std::runtime_error if port 443 is in use or the file cannot be read.
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
