#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <vector>

namespace TestSupport {

/// Like `forgetPages()`, but also clears the data stores of `sessions`.
[[nodiscard]] bool forgetPages(std::vector<Platform::GObjectPtr<WebKitNetworkSession>> sessions);

} // namespace TestSupport
