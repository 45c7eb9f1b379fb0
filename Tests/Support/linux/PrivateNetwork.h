#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace TestSupport {

/// Gives this process and its future children a private network, private mounts and private X displays. The
/// network has only the loopback interface, and every user may listen on every port. Returns false if the
/// kernel does not allow it. To be called once, in a process with a single thread. Throws std::system_error
/// for any other failure.
[[nodiscard]] bool enterPrivateNetwork();

/// Replaces /etc/hosts with `file` in the private mounts.
void resolveBy(const std::filesystem::path& file);

/// Makes the certificate authorities in `file` the only trusted ones in the private mounts.
void trustOnly(const std::filesystem::path& file);

} // namespace TestSupport
