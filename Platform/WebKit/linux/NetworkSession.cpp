#include "Platform/WebKit/linux/NetworkSession.h"

#include "Platform/AppKit/linux/PrivateFolder.h"

namespace Platform {

namespace {

void refuseDownload(WebKitNetworkSession* /*session*/, WebKitDownload* download, gpointer /*data*/) {
    webkit_download_cancel(download);
}

WebKitNetworkSession* makePersistentSession() {
    const auto data = privateFolder(g_get_user_data_dir());
    const auto cache = privateFolder(g_get_user_cache_dir());
    if (!data || !cache) {
        return webkit_network_session_new_ephemeral();
    }
    auto* session = webkit_network_session_new(data->c_str(), cache->c_str());
    webkit_cookie_manager_set_persistent_storage(webkit_network_session_get_cookie_manager(session),
                                                 (*data + "/cookies.sqlite").c_str(),
                                                 WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    return session;
}

WebKitNetworkSession* restricted(WebKitNetworkSession* session) {
    // The application never asks for passwords, so there are no credentials to look up in the keyring.
    webkit_network_session_set_persistent_credential_storage_enabled(session, FALSE);
    g_signal_connect(session, "download-started", G_CALLBACK(refuseDownload), nullptr);
    return session;
}

} // namespace

GObjectPtr<WebKitNetworkSession> networkSession(WebsiteDataStore store) {
    if (store == WebsiteDataStore::nonPersistent) {
        return GObjectPtr<WebKitNetworkSession>::adopt(restricted(webkit_network_session_new_ephemeral()));
    }
    static WebKitNetworkSession* const defaultSession = restricted(makePersistentSession());
    return GObjectPtr<WebKitNetworkSession>::retain(defaultSession);
}

} // namespace Platform
