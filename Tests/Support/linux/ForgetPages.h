#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <chrono>
#include <vector>

namespace TestSupport {

/// `forgetPages` for the pages of `sessions` as well, which have stores of their own, within about `limit`.
[[nodiscard]] bool forgetPages(std::vector<Platform::GObjectPtr<WebKitNetworkSession>> sessions,
                               std::chrono::seconds limit);

} // namespace TestSupport
