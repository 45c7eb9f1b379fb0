#pragma once

#include "Platform/WebKit/WebViewConfiguration.h"

#import <WebKit/WebKit.h>

namespace Platform {

struct WebViewConfiguration::Native {
    explicit Native(WKWebViewConfiguration* _Nonnull made)
        : configuration(made) {}

    WKWebViewConfiguration* __strong _Nonnull const configuration;
    /// True if WebKit supplied the configuration for a new window, which shares the data store of its opener.
    bool isForNewWindow = false;
};

/// Wraps the configuration that WebKit supplies for a new window. `opener` is the opener's configuration.
std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WKWebViewConfiguration* _Nonnull supplied,
                                                             const WebViewConfiguration& opener);

/// Returns the native configuration with the current settings of `configuration`. If the data store is
/// nonpersistent, each call creates a new store, except for a new window opened by a page.
WKWebViewConfiguration* _Nonnull nativeConfiguration(WebViewConfiguration& configuration);

} // namespace Platform
