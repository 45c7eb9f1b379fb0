#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"
#include "Platform/WebKit/linux/WebProcessSlots.h"

#include <webkit/webkit.h>

#include <memory>

namespace Platform {

struct WebViewConfiguration::Native {
    /// The opener of a page's new window, to which WebKitGTK connects the new page. Cleared when the view is
    /// created, because the configuration lives as long as the new view and the opener may not.
    GObjectPtr<WebKitWebView> opener;
    /// Limits the web processes of these views and of the windows that their pages open. Never null.
    std::shared_ptr<WebProcessSlots> slots = WebProcessSlots::shared();
};

/// The configuration for a new window of the page in `view`, which was made with `ours`.
std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WebKitWebView* view, WebViewConfiguration& ours);

} // namespace Platform
