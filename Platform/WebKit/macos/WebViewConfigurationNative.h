#pragma once

#include "Platform/WebKit/WebViewConfiguration.h"

#import <WebKit/WebKit.h>

namespace Platform {

struct WebViewConfiguration::Native {
    explicit Native(WKWebViewConfiguration* _Nonnull made)
        : configuration(made) {}

    WKWebViewConfiguration* __strong _Nonnull const configuration;
    /// It is WebKit's for a page's new window, which shares the store of the page that opens it.
    bool isForNewWindow = false;
};

/// The configuration that WebKit hands over for a new window of `opener`'s page.
std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WKWebViewConfiguration* _Nonnull supplied,
                                                             const WebViewConfiguration& opener);

/// WebKit's configuration, as ours now says. Of one that is kept in memory only, each call begins a new
/// store.
WKWebViewConfiguration* _Nonnull nativeConfiguration(WebViewConfiguration& configuration);

} // namespace Platform
