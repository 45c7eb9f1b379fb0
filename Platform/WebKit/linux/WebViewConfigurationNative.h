#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"
#include "Platform/WebKit/linux/WebProcessSlots.h"

#include <webkit/webkit.h>

#include <memory>

namespace Platform {

struct WebViewConfiguration::Native {
    /// For a new window, the view whose page opens the window. WebKitGTK connects the new page to it. Cleared
    /// when the new view is created, because the configuration lives as long as the new view and must not
    /// keep the opener alive.
    GObjectPtr<WebKitWebView> opener;
    /// Limits the number of web processes of these views and of the windows that their pages open. Never
    /// null.
    std::shared_ptr<WebProcessSlots> slots = WebProcessSlots::shared();
};

/// Creates the configuration for a new window opened by the page in `view`. `ours` is the configuration of
/// `view`.
std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WebKitWebView* view, WebViewConfiguration& ours);

} // namespace Platform
