#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

namespace Platform {

/// Returns WebKitGTK's network session for a data store. The session refuses every download. Main thread
/// only.
///
/// A store that is not persistent gets a new session in memory at each call. The session of the default store
/// is created at the first call and lives as long as the process. It keeps its data in the user's data and
/// cache directories, in folders that have the application's name and are accessible only to the user. If
/// they cannot be created, a line is logged and nothing outlives the process.
GObjectPtr<WebKitNetworkSession> networkSession(WebsiteDataStore store);

} // namespace Platform
