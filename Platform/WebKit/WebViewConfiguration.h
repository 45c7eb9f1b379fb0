#pragma once

#include "Platform/WebKit/UserContentController.h"

#include <memory>
#include <utility>

namespace Platform {

/// Where cookies, storage and caches of web views live.
enum class WebsiteDataStore {
    /// The user's persistent store, shared by all views that have it.
    defaultStore,
    /// A new one for each view, in memory, that ends with the view: nothing of it reaches a disk, or another
    /// view except the windows that its pages open.
    nonPersistent,
};

/// What a web view is made with; read when the view is created. Main thread only.
class WebViewConfiguration {
public:
    static std::shared_ptr<WebViewConfiguration> create();

    WebViewConfiguration(const WebViewConfiguration&) = delete;
    WebViewConfiguration& operator=(const WebViewConfiguration&) = delete;
    ~WebViewConfiguration();

    WebsiteDataStore websiteDataStore() const { return websiteDataStore_; }
    void setWebsiteDataStore(WebsiteDataStore store) { websiteDataStore_ = store; }

    /// What the views' pages are given besides; a configuration has one of its own to begin with.
    const std::shared_ptr<UserContentController>& userContentController() const {
        return userContentController_;
    }
    void setUserContentController(std::shared_ptr<UserContentController> controller) {
        userContentController_ = std::move(controller);
    }

    /// The system's side, for Platform's own sources: for a page's new window it carries the opener.
    struct Native;
    Native& native() { return *native_; }

    explicit WebViewConfiguration(std::unique_ptr<Native> native);

private:
    WebsiteDataStore websiteDataStore_ = WebsiteDataStore::defaultStore;
    std::shared_ptr<UserContentController> userContentController_;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
