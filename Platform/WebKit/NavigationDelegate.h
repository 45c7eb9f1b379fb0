#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/WebKit/NavigationAction.h"

#include <functional>

namespace Platform {

class WebView;

enum class NavigationActionPolicy { cancel, allow };

/// Receives the navigation events of a web view on the main thread. The default implementations do nothing.
///
/// Errors use the domains and codes of Foundation and WebKit: "NSURLErrorDomain" (-999 cancelled, -1001 timed
/// out, -1003 host not found, …) and "WebKitErrorDomain" (102 frame load interrupted, …).
class NavigationDelegate {
public:
    virtual ~NavigationDelegate() = default;

    /// Called when a page has finished loading.
    virtual void didFinishNavigation(WebView& /*webView*/) {}

    /// Called when a load has failed after its page committed.
    virtual void didFailNavigation(WebView& /*webView*/, const Error& /*error*/) {}

    /// Called when a load has failed before its page committed. The view keeps the previous page. If the
    /// policy delegate cancels a redirect, the load fails with error 102 of "WebKitErrorDomain". Cancelling a
    /// navigation that is not a redirect does not report a failure.
    virtual void didFailProvisionalNavigation(WebView& /*webView*/, const Error& /*error*/) {}
};

/// A navigation delegate that also decides whether to allow each navigation. Without a policy delegate,
/// WebKit allows every navigation to a URL that it can load. On macOS, WebKit passes other URLs, such as
/// `mailto:`, to the application that handles them.
class NavigationPolicyDelegate : public NavigationDelegate {
public:
    /// Completes one policy decision. May be called during `decidePolicy` or later, on the main thread. Only
    /// the first call has an effect. Destroying the handler without calling it cancels the navigation.
    using DecisionHandler = std::function<void(NavigationActionPolicy)>;

    /// Decides whether to allow a navigation of the page or one of its frames. Called before every navigation
    /// and redirect, and before every new window that a link or a form requests. Not called for the page of
    /// `WebView::loadHTMLString` itself, `history.pushState`, or history navigations within a document.
    virtual void decidePolicy(WebView& webView, const NavigationAction& action,
                              const DecisionHandler& decisionHandler) = 0;
};

} // namespace Platform
