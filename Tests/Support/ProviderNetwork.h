#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// A private network in which the identity provider's hosts, and those of the programs that ask it, are this
/// machine, and https to them is vouched for by an authority made for the occasion.
class ProviderNetwork {
public:
    /// Runs this program once more, with the same arguments, inside such a network, and ends the process as
    /// that one ended. Returns inside it, and where the system lets nobody have a network of his own. To be
    /// called at the program's begin. Throws std::exception when the network cannot be prepared.
    static void enter(const std::vector<std::string>& arguments);

    /// The one the process is in, or nothing.
    static const ProviderNetwork* current();

    /// A key and a certificate of these hosts that the system trusts.
    std::filesystem::path identity() const { return directory_ / "identity.pem"; }
    /// The same names vouched for by somebody the system does not know.
    std::filesystem::path strangersIdentity() const { return directory_ / "strangers-identity.pem"; }
    /// A trusted certificate of another name.
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
