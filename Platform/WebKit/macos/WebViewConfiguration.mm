#include "Platform/WebKit/WebViewConfiguration.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/WebKit/macos/UserContentControllerNative.h"
#include "Platform/WebKit/macos/WebViewConfigurationNative.h"

#include <utility>

namespace Platform {

namespace {

WKWebsiteDataStore* nativeStore(WebsiteDataStore store) {
    switch (store) {
    case WebsiteDataStore::nonPersistent:
        return WKWebsiteDataStore.nonPersistentDataStore;
    case WebsiteDataStore::defaultStore:
        break;
    }
    return WKWebsiteDataStore.defaultDataStore;
}

} // namespace

WebViewConfiguration::WebViewConfiguration(std::unique_ptr<Native> native)
    : native_(std::move(native)) {}

WebViewConfiguration::~WebViewConfiguration() = default;

std::shared_ptr<WebViewConfiguration> WebViewConfiguration::create() {
    assertMainThread("WebViewConfiguration::create");
    auto configuration = std::make_shared<WebViewConfiguration>(
        std::make_unique<Native>([[WKWebViewConfiguration alloc] init]));
    configuration->setUserContentController(UserContentController::create());
    return configuration;
}

std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WKWebViewConfiguration* supplied,
                                                             const WebViewConfiguration& opener) {
    auto native = std::make_unique<WebViewConfiguration::Native>(supplied);
    native->isForNewWindow = true;
    auto configuration = std::make_shared<WebViewConfiguration>(std::move(native));
    configuration->setWebsiteDataStore(opener.websiteDataStore());
    configuration->setUserContentController(opener.userContentController());
    return configuration;
}

WKWebViewConfiguration* nativeConfiguration(WebViewConfiguration& configuration) {
    const WebViewConfiguration::Native& native = configuration.native();
    native.configuration.userContentController = configuration.userContentController()->native().controller;
    // WebKit requires a new window to share the store of its opener.
    if (!native.isForNewWindow) {
        native.configuration.websiteDataStore = nativeStore(configuration.websiteDataStore());
    }
    return native.configuration;
}

} // namespace Platform
