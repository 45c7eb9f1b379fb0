#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// A private network in which the host names of the identity provider and its clients resolve to this
/// machine. A temporary certificate authority issues the certificates of these hosts.
class ProviderNetwork {
public:
    /// Runs this program again inside a private network, with the same arguments, and exits with the status
    /// of that run. Returns if the process is already inside a private network, or if the kernel does not
    /// permit one. Must be called at the start of the program. Throws std::exception if the network cannot be
    /// set up.
    static void enter(const std::vector<std::string>& arguments);

    /// The network to which this process belongs, or null.
    static const ProviderNetwork* current();

    /// A file with a private key and a trusted certificate for the hosts of the network.
    std::filesystem::path identity() const { return directory_ / "identity.pem"; }
    /// A file with a private key and a certificate for the hosts of the network, issued by an untrusted
    /// authority.
    std::filesystem::path strangersIdentity() const { return directory_ / "strangers-identity.pem"; }
    /// A file with a private key and a trusted certificate for a different host.
    std::filesystem::path otherHostsIdentity() const { return directory_ / "other-hosts-identity.pem"; }

private:
    explicit ProviderNetwork(std::filesystem::path directory)
        : directory_(std::move(directory)) {}

    void prepare() const;
    bool join() const;
    int runInside(std::vector<std::string> arguments) const;

    std::filesystem::path directory_;
};

} // namespace TestSupport
