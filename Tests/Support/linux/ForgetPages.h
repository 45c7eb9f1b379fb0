#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <chrono>
#include <vector>

namespace TestSupport {

/// Like `forgetPages()`, and also for `sessions`, which have other data stores. Gives up after about `limit`.
[[nodiscard]] bool forgetPages(std::vector<Platform::GObjectPtr<WebKitNetworkSession>> sessions,
                               std::chrono::seconds limit);

} // namespace TestSupport
