#include "Platform/WebKit/linux/NetworkSession.h"

#include "Platform/AppKit/linux/PrivateFolder.h"

namespace Platform {

namespace {

void refuseDownload(WebKitNetworkSession* /*session*/, WebKitDownload* download, gpointer /*data*/) {
    webkit_download_cancel(download);
}

WebKitNetworkSession* makeDefaultSession() {
    const auto data = privateFolder(g_get_user_data_dir());
    const auto cache = privateFolder(g_get_user_cache_dir());
    WebKitNetworkSession* session = data && cache ? webkit_network_session_new(data->c_str(), cache->c_str())
                                                  : webkit_network_session_new_ephemeral();
    if (data && cache) {
        webkit_cookie_manager_set_persistent_storage(webkit_network_session_get_cookie_manager(session),
                                                     (*data + "/cookies.sqlite").c_str(),
                                                     WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    }
    // Passwords are never asked for, so that there are none to look up in the key ring.
    webkit_network_session_set_persistent_credential_storage_enabled(session, FALSE);
    g_signal_connect(session, "download-started", G_CALLBACK(refuseDownload), nullptr);
    return session;
}

} // namespace

WebKitNetworkSession* networkSession(WebsiteDataStore /*store*/) {
    static WebKitNetworkSession* const defaultSession = makeDefaultSession();
    return defaultSession;
}

} // namespace Platform
