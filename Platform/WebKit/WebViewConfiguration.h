#pragma once

#include "Platform/WebKit/UserContentController.h"

#include <memory>
#include <utility>

namespace Platform {

/// The store in which web views keep cookies, website storage and caches.
enum class WebsiteDataStore {
    /// The user's persistent store, shared by all views that use it.
    defaultStore,
    /// A separate in-memory store for each view and the windows that its pages open, never written to disk.
    nonPersistent,
};

/// Settings that a web view reads when it is created. Main thread only.
class WebViewConfiguration {
public:
    static std::shared_ptr<WebViewConfiguration> create();

    WebViewConfiguration(const WebViewConfiguration&) = delete;
    WebViewConfiguration& operator=(const WebViewConfiguration&) = delete;
    ~WebViewConfiguration();

    WebsiteDataStore websiteDataStore() const { return websiteDataStore_; }
    void setWebsiteDataStore(WebsiteDataStore store) { websiteDataStore_ = store; }

    /// Scripts and message handlers for the views' pages. Never null; by default, a new controller.
    const std::shared_ptr<UserContentController>& userContentController() const {
        return userContentController_;
    }
    void setUserContentController(std::shared_ptr<UserContentController> controller) {
        userContentController_ = std::move(controller);
    }

    /// The native configuration, which identifies the opener of a page's new window. Internal to Platform.
    struct Native;
    Native& native() { return *native_; }

    explicit WebViewConfiguration(std::unique_ptr<Native> native);

private:
    WebsiteDataStore websiteDataStore_ = WebsiteDataStore::defaultStore;
    std::shared_ptr<UserContentController> userContentController_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
