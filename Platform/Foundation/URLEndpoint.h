#pragma once

#include "Platform/Foundation/URL.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Platform {

/// The parts of a URL that identify its target: scheme, host, effective port and decoded path. An empty path
/// is stored as "/". Excludes credentials, query and fragment. Compared exactly, without case folding.
struct URLEndpoint {
    std::optional<std::string> scheme;
    std::optional<std::string> host;
    std::optional<std::int64_t> port;
    std::string path;

    /// Returns nothing if a part cannot be decoded. Otherwise, a host that is not valid UTF-8 would be
    /// treated as absent, a port that exceeds 64 bits as the default port, and a path that is not valid UTF-8
    /// as the root.
    static std::optional<URLEndpoint> of(const URL& url);

    /// Returns the port of the URL, or the default port for "http" and "https". Returns nothing for other
    /// schemes without a port.
    static std::optional<std::int64_t> effectivePort(const URL& url);

    friend bool operator==(const URLEndpoint&, const URLEndpoint&) = default;
};

} // namespace Platform
