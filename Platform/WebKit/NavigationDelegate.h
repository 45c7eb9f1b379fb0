#pragma once

#include "Platform/Foundation/Error.h"
#include "Platform/WebKit/NavigationAction.h"

#include <functional>

namespace Platform {

class WebView;

enum class NavigationActionPolicy { cancel, allow };

/// Told of a web view's navigations, on the main thread; what a delegate leaves out, WebKit's defaults
/// answer.
///
/// Errors bear the domains and codes of Foundation and WebKit: "NSURLErrorDomain" (-999 cancelled, -1001
/// timed out, -1003 host not found …) and "WebKitErrorDomain" (102 frame load interrupted …).
class NavigationDelegate {
public:
    virtual ~NavigationDelegate() = default;

    /// A page has come in whole.
    virtual void didFinishNavigation(WebView& /*webView*/) {}

    /// A page that had begun to show failed to load to its end.
    virtual void didFailNavigation(WebView& /*webView*/, const Error& /*error*/) {}

    /// A load failed before anything of the new page showed; the previous page stays. A redirect that the
    /// policy cancels fails as WebKitErrorDomain 102; any other cancelled navigation fails nothing.
    virtual void didFailProvisionalNavigation(WebView& /*webView*/, const Error& /*error*/) {}
};

/// A navigation delegate that decides where the page may go. With any other the engine decides: it goes
/// wherever it can, and macOS hands what WebKit does not load (`mailto:` …) to the program that does.
class NavigationPolicyDelegate : public NavigationDelegate {
public:
    /// Answers the question that came with it. May be called at once or later, from the main thread; the
    /// first call counts. A question whose handler is destroyed uncalled is answered with `cancel`.
    using DecisionHandler = std::function<void(NavigationActionPolicy)>;

    /// Whether the page, or one of its frames, may go where it wants: asked before every navigation, each
    /// redirect and each new window that a link or a form asks for; not about `WebView::loadHTMLString`'s
    /// own page, nor about steps within one document.
    virtual void decidePolicy(WebView& webView, const NavigationAction& action,
                              const DecisionHandler& decisionHandler) = 0;
};

} // namespace Platform
