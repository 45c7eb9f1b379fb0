#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

namespace Platform {

/// Returns the network session for a data store. The session refuses every download. Main thread only.
///
/// For a nonpersistent store, each call creates a new in-memory session. The session of the default store is
/// created on the first call and is never destroyed. It stores its data in the user's data and cache
/// directories, in folders that are named after the application and accessible only to the user. If the
/// folders cannot be created, an error is logged and the session keeps its data in memory.
GObjectPtr<WebKitNetworkSession> networkSession(WebsiteDataStore store);

} // namespace Platform
