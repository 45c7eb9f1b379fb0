#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <vector>

namespace TestSupport {

/// `forgetPages` for the pages of `sessions` as well, which have stores of their own.
[[nodiscard]] bool forgetPages(std::vector<Platform::GObjectPtr<WebKitNetworkSession>> sessions);

} // namespace TestSupport
