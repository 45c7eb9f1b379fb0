#pragma once

#include "Platform/Foundation/URL.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Platform {

/// The part of a URL that says where it leads: scheme, host, effective port and decoded path, in which an
/// empty path is "/". Credentials, query and fragment are not part of it. Compared exactly, without case
/// folding.
struct URLEndpoint {
    std::optional<std::string> scheme;
    std::optional<std::string> host;
    std::optional<std::int64_t> port;
    std::string path;

    /// Returns nothing if a part cannot be read: a host that is not UTF-8 would otherwise count as absent, a
    /// port beyond an integer as the scheme's own, and a path that is not UTF-8 as the root.
    static std::optional<URLEndpoint> of(const URL& url);

    /// The port that a URL names, else that of "http" or "https".
    static std::optional<std::int64_t> effectivePort(const URL& url);

    friend bool operator==(const URLEndpoint&, const URLEndpoint&) = default;
};

} // namespace Platform
