#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/WebKit/NavigationAction.h"

#include <functional>

namespace Platform {

class WebView;

enum class NavigationActionPolicy { cancel, allow };

/// Receives the navigation events of a web view on the main thread. The default implementations do nothing.
///
/// Errors have the domains and codes of Foundation and WebKit: "NSURLErrorDomain" (-999 cancelled, -1001
/// timed out, -1003 host not found …) and "WebKitErrorDomain" (102 frame load interrupted …).
class NavigationDelegate {
public:
    virtual ~NavigationDelegate() = default;

    /// A page finished loading.
    virtual void didFinishNavigation(WebView& /*webView*/) {}

    /// A load failed after its page committed.
    virtual void didFailNavigation(WebView& /*webView*/, const Error& /*error*/) {}

    /// A load failed before its page committed; the previous page stays. A redirect that the policy cancels
    /// fails with WebKitErrorDomain 102. Cancelling any other navigation does not report a failure.
    virtual void didFailProvisionalNavigation(WebView& /*webView*/, const Error& /*error*/) {}
};

/// A navigation delegate that also decides about navigations. Without one, WebKit allows every navigation
/// that it can load; on macOS it passes other URLs, such as `mailto:`, to the program that handles them.
class NavigationPolicyDelegate : public NavigationDelegate {
public:
    /// Answers one policy question. May be called during `decidePolicy` or later, on the main thread. Only
    /// the first call counts. Destroying the handler without a call answers with `cancel`.
    using DecisionHandler = std::function<void(NavigationActionPolicy)>;

    /// Decides about a navigation of the page or one of its frames. Called before every navigation, every
    /// redirect and every new window that a link or a form requests, but not for the page of
    /// `WebView::loadHTMLString` itself, nor for `history.pushState` and moves through the history within one
    /// document.
    virtual void decidePolicy(WebView& webView, const NavigationAction& action,
                              const DecisionHandler& decisionHandler) = 0;
};

} // namespace Platform
