#pragma once

#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

namespace Platform {

/// The engine's network session that stands for a data store, made at the first call. It lives as long as the
/// process, and refuses every download. Main thread only.
///
/// The default store keeps what it has to keep in the user's data and cache directories, in folders of the
/// application's name that only the user may enter. Where they cannot be made, a line is logged and nothing
/// outlives the process.
WebKitNetworkSession* networkSession(WebsiteDataStore store);

} // namespace Platform
