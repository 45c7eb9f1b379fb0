#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

namespace Platform {

struct WebViewConfiguration::Native {
    /// Set for a page's new window, until its view is made: the engine connects the two pages. It is not kept
    /// any longer, for the configuration lives as long as the new view and the opener need not.
    GObjectPtr<WebKitWebView> opener;
};

} // namespace Platform
