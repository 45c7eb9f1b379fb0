#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// Moves this process and its future children to a private network with private mounts and private X
/// displays. The network has only the loopback interface, and unprivileged processes may listen on all its
/// ports. Returns false if the kernel does not permit this. Must be called only once, in a single-threaded
/// process. Throws std::system_error for any other failure.
[[nodiscard]] bool enterPrivateNetwork();

/// Replaces /etc/hosts with `file` in the private mounts.
void resolveBy(const std::filesystem::path& file);

/// Makes programs that use the private mounts trust only the certificate authorities in `file`.
void trustOnly(const std::filesystem::path& file);

} // namespace TestSupport
