#include "Tests/Support/linux/CertificateAuthority.h"

#include <glib.h>

#include <fstream>
#include <stdexcept>

namespace TestSupport {

namespace {

void runOpenSSL(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "openssl");
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    g_autofree char* output = nullptr;
    g_autoptr(GError) error = nullptr;
    int status = 0;
    if (!g_spawn_sync(nullptr, argv.data(), nullptr, G_SPAWN_SEARCH_PATH, nullptr, nullptr, nullptr, &output,
                      &status, &error) ||
        !g_spawn_check_wait_status(status, &error)) {
        throw std::runtime_error(std::string("openssl: ") + error->message + "\n" + (output ? output : ""));
    }
}

/// Writes a new private key and a certificate with these extensions to `file`. The key in `authority` signs
/// the certificate. If `authority` is empty, the certificate is self-signed.
void makeCertificate(const std::filesystem::path& file, const std::string& name,
                     const std::string& extensions, const std::filesystem::path& authority = {}) {
    const std::string configuration = file.string() + ".conf";
    std::ofstream(configuration) << "[req]\nprompt = no\ndistinguished_name = name\nx509_extensions = "
                                    "extensions\n[name]\nCN = "
                                 << name << "\n[extensions]\n"
                                 << extensions;
    std::vector<std::string> arguments{
        "req",    "-x509", "-newkey", "ec",      "-pkeyopt",    "ec_paramgen_curve:P-256",
        "-nodes", "-days", "2",       "-config", configuration, "-keyout",
        file,     "-out",  file};
    if (!authority.empty()) {
        arguments.insert(arguments.end(), {"-CA", authority, "-CAkey", authority});
    }
    runOpenSSL(std::move(arguments));
}

} // namespace

CertificateAuthority::CertificateAuthority(std::filesystem::path file)
    : file_(std::move(file)) {
    makeCertificate(file_, file_.stem(),
                    "basicConstraints = critical, CA:TRUE\nkeyUsage = critical, keyCertSign\n"
                    "subjectKeyIdentifier = hash\n");
}

void CertificateAuthority::issue(const std::filesystem::path& file,
                                 const std::vector<std::string>& hosts) const {
    std::string names;
    for (const auto& host : hosts) {
        names += (names.empty() ? "DNS:" : ", DNS:") + host;
    }
    makeCertificate(file, hosts.front(),
                    "basicConstraints = critical, CA:FALSE\nextendedKeyUsage = serverAuth\n"
                    "subjectAltName = " +
                        names + "\n",
                    file_);
}

} // namespace TestSupport
