#pragma once

#include "Platform/WebKit/WebViewConfiguration.h"

#import <WebKit/WebKit.h>

namespace Platform {

struct WebViewConfiguration::Native {
    explicit Native(WKWebViewConfiguration* _Nonnull made)
        : configuration(made) {}

    WKWebViewConfiguration* __strong _Nonnull const configuration;
    /// True if WebKit supplied the configuration for a page's new window, which shares the store of its
    /// opener.
    bool isForNewWindow = false;
};

/// Wraps the configuration that WebKit supplies for a new window of `opener`'s page.
std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WKWebViewConfiguration* _Nonnull supplied,
                                                             const WebViewConfiguration& opener);

/// Returns the native configuration with the current settings of `configuration`. If the store is not
/// persistent, each call creates a new one, except for a page's new window.
WKWebViewConfiguration* _Nonnull nativeConfiguration(WebViewConfiguration& configuration);

} // namespace Platform
