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

    /// Returns nothing if a part cannot be decoded, so that an invalid host, port or path is not mistaken for
    /// an absent host, the default port or the root.
    static std::optional<URLEndpoint> of(const URL& url);

    /// Returns the URL's port or, for "http" and "https", the default port. Otherwise returns nothing.
    static std::optional<std::int64_t> effectivePort(const URL& url);

    friend bool operator==(const URLEndpoint&, const URLEndpoint&) = default;
};

} // namespace Platform
