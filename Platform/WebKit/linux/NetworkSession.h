#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

namespace Platform {

/// The engine's network session that stands for a data store; it refuses every download. Main thread only.
///
/// A store that is not persistent is a new session in memory at each call. The default store's is made at the
/// first call and lives as long as the process. It keeps what it has to keep in the user's data and cache
/// directories, in folders of the application's name that only the user may enter. Where they cannot be made,
/// a line is logged and nothing outlives the process.
GObjectPtr<WebKitNetworkSession> networkSession(WebsiteDataStore store);

} // namespace Platform
