#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// A private network in which the host names of the identity provider and of its clients resolve to this
/// machine. A temporary certificate authority issues their certificates.
class ProviderNetwork {
public:
    /// Runs this program again inside such a network, with the same arguments, and exits with the status of
    /// that run. Returns if the process is already inside, or if the kernel does not allow a private network.
    /// To be called at the start of the program. Throws std::exception if the network cannot be prepared.
    static void enter(const std::vector<std::string>& arguments);

    /// The network that contains this process, or null.
    static const ProviderNetwork* current();

    /// A key and a trusted certificate for these hosts.
    std::filesystem::path identity() const { return directory_ / "identity.pem"; }
    /// A certificate for the same hosts from an unknown authority.
    std::filesystem::path strangersIdentity() const { return directory_ / "strangers-identity.pem"; }
    /// A trusted certificate for another host.
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
