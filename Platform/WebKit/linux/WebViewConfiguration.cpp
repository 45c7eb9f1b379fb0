#include "Platform/WebKit/WebViewConfiguration.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/WebKit/linux/WebViewConfigurationNative.h"

#include <utility>

namespace Platform {

WebViewConfiguration::WebViewConfiguration(std::unique_ptr<Native> native)
    : native_(std::move(native)) {}

WebViewConfiguration::~WebViewConfiguration() = default;

std::shared_ptr<WebViewConfiguration> WebViewConfiguration::create() {
    assertMainThread("WebViewConfiguration::create");
    auto configuration = std::make_shared<WebViewConfiguration>(std::make_unique<Native>());
    configuration->setUserContentController(UserContentController::create());
    return configuration;
}

std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WebKitWebView* view,
                                                             WebViewConfiguration& ours) {
    auto native = std::make_unique<WebViewConfiguration::Native>();
    native->opener = GObjectPtr<WebKitWebView>::retain(view);
    native->slots = ours.native().slots;
    auto configuration = std::make_shared<WebViewConfiguration>(std::move(native));
    configuration->setUserContentController(ours.userContentController());
    configuration->setWebsiteDataStore(ours.websiteDataStore());
    return configuration;
}

} // namespace Platform
