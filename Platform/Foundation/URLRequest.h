#pragma once

#include "Platform/Foundation/URL.h"

namespace Platform {

/// What is asked of a server. The cache policy is always the protocol's own.
struct URLRequest {
    URL url;
    /// Seconds without an answer after which the load fails.
    double timeoutInterval = 60;

    friend bool operator==(const URLRequest&, const URLRequest&) = default;
};

} // namespace Platform
