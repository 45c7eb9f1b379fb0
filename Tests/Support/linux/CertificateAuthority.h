#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// A certificate authority, whose private key and certificate are stored in a file. All functions throw
/// std::runtime_error if openssl fails.
class CertificateAuthority {
public:
    /// Creates a new authority and writes its private key and certificate to `file`.
    explicit CertificateAuthority(std::filesystem::path file);

    /// Writes a private key and a server certificate for these hosts to `file`.
    void issue(const std::filesystem::path& file, const std::vector<std::string>& hosts) const;

private:
    std::filesystem::path file_;
};

} // namespace TestSupport
