#pragma once

#include "Platform/Foundation/URL.h"

namespace Platform {

/// A request to load a URL. Uses the default cache policy of the URL's protocol.
struct URLRequest {
    URL url;
    /// The time, in seconds, after which the load fails if the server does not respond.
    double timeoutInterval = 60;

    friend bool operator==(const URLRequest&, const URLRequest&) = default;
};

} // namespace Platform
