#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// A certificate authority that lives as long as its file. Throws std::runtime_error where the tool that
/// makes the certificates fails.
class CertificateAuthority {
public:
    /// Made anew; `file` then holds its key and its certificate.
    explicit CertificateAuthority(std::filesystem::path file);

    /// Writes a server's key and certificate for these hosts to `file`.
    void issue(const std::filesystem::path& file, const std::vector<std::string>& hosts) const;

private:
    std::filesystem::path file_;
};

} // namespace TestSupport
