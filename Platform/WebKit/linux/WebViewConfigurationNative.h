#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"
#include "Platform/WebKit/linux/WebProcessSlots.h"

#include <webkit/webkit.h>

#include <memory>

namespace Platform {

struct WebViewConfiguration::Native {
    /// The view whose page opens the new window, if any. WebKitGTK connects the new page to it. Cleared when
    /// the new view is created, so that the configuration does not keep the opener alive.
    GObjectPtr<WebKitWebView> opener;
    /// The slots for web processes, shared with windows that pages open. Never null.
    std::shared_ptr<WebProcessSlots> slots = WebProcessSlots::shared();
};

/// Creates the configuration for a window that the page in `view` opens. `ours` is the view's configuration.
std::shared_ptr<WebViewConfiguration> newWindowConfiguration(WebKitWebView* view, WebViewConfiguration& ours);

} // namespace Platform
