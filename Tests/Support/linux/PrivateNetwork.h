#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// Gives this process, and whatever it starts from now on, a network in which nothing but loopback is there
/// and everybody may listen on every port, and mounts that nobody else sees; its displays are its own, too.
/// False where the system does not let it. To be called once, in a process with one thread. Throws
/// std::system_error for any other failure.
[[nodiscard]] bool enterPrivateNetwork();

/// In the private mounts `file`, a list as in /etc/hosts, says which names there are.
void resolveBy(const std::filesystem::path& file);

/// In the private mounts the certificate authorities in `file` are the only ones that the system trusts.
void trustOnly(const std::filesystem::path& file);

} // namespace TestSupport
