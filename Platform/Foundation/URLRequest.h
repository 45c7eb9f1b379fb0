#pragma once

#include "Platform/Foundation/URL.h"

namespace Platform {

/// A request to a server. The cache policy is always that of the protocol.
struct URLRequest {
    URL url;
    /// Seconds without an answer after which the load fails.
    double timeoutInterval = 60;

    friend bool operator==(const URLRequest&, const URLRequest&) = default;
};

} // namespace Platform
