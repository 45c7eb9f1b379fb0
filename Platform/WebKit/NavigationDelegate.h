#pragma once

#include "Platform/Foundation/Error.h"

namespace Platform {

class WebView;

/// Told of a web view's loads. Errors bear the domains and codes of Foundation and WebKit: "NSURLErrorDomain"
/// (-999 cancelled, -1001 timed out, -1003 host not found …) and "WebKitErrorDomain" (102 frame load
/// interrupted …).
class NavigationDelegate {
public:
    virtual ~NavigationDelegate() = default;

    /// A page that had begun to show failed to load to its end.
    virtual void didFailNavigation(WebView& webView, const Error& error) = 0;

    /// A load failed before anything of the new page showed; the previous page stays.
    virtual void didFailProvisionalNavigation(WebView& webView, const Error& error) = 0;
};

} // namespace Platform
