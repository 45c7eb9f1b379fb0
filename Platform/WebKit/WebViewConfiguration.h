#pragma once

#include <memory>

namespace Platform {

/// Where cookies, storage and caches of web views live.
enum class WebsiteDataStore {
    /// The user's persistent store, shared by all views that have it.
    defaultStore,
};

/// What a web view is made with; read when the view is created.
class WebViewConfiguration {
public:
    static std::shared_ptr<WebViewConfiguration> create();

    WebViewConfiguration(const WebViewConfiguration&) = delete;
    WebViewConfiguration& operator=(const WebViewConfiguration&) = delete;
    ~WebViewConfiguration();

    WebsiteDataStore websiteDataStore() const { return websiteDataStore_; }
    void setWebsiteDataStore(WebsiteDataStore store) { websiteDataStore_ = store; }

    /// The system's side, for Platform's own sources: for a page's new window it carries the opener.
    struct Native;
    Native& native() { return *native_; }

    explicit WebViewConfiguration(std::unique_ptr<Native> native);

private:
    WebsiteDataStore websiteDataStore_ = WebsiteDataStore::defaultStore;
    std::unique_ptr<Native> native_;
};

} // namespace Platform
