#pragma once

#include "Platform/WebKit/NavigationAction.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace Platform {

class WebView;
class WebViewConfiguration;

/// Handles a page's requests that concern its window. Called on the main thread. The default implementations
/// refuse new windows, ignore requests to close the window, dismiss alerts and refuse confirmations.
///
/// A completion may be called before the function returns or later, on the main thread. Only the first call
/// has an effect. Destroying a completion without calling it dismisses the alert or refuses the confirmation.
class UIDelegate {
public:
    virtual ~UIDelegate() = default;

    /// Called when a page opens a window. Returns a web view that was created with `configuration`, into
    /// which WebKit then loads the page, or null to refuse the window. Returning a view with another
    /// configuration is a fatal error. The view must be visible, or about to become visible, when the
    /// function returns.
    virtual std::shared_ptr<WebView>
    createWebView(WebView& /*webView*/, const std::shared_ptr<WebViewConfiguration>& /*configuration*/,
                  const NavigationAction& /*action*/) {
        return nullptr;
    }

    /// Called when a script closes the window of its page. The page keeps running until the view is released.
    virtual void webViewDidClose(WebView& /*webView*/) {}

    /// Called when a script calls `alert`. The script waits until `completion` is called.
    virtual void runJavaScriptAlertPanel(WebView& /*webView*/, const std::string& /*message*/,
                                         const FrameInfo& /*frame*/, std::function<void()> completion) {
        const auto answer = std::move(completion);
        answer();
    }

    /// Called when a script calls `confirm`. The script waits until `completion` is called with the result.
    virtual void runJavaScriptConfirmPanel(WebView& /*webView*/, const std::string& /*message*/,
                                           const FrameInfo& /*frame*/, std::function<void(bool)> completion) {
        const auto answer = std::move(completion);
        answer(false);
    }
};

} // namespace Platform
