#pragma once

#include "Platform/WebKit/NavigationAction.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace Platform {

class WebView;
class WebViewConfiguration;

/// Handles a page's requests to its window, on the main thread. The default implementations refuse new
/// windows, ignore the closing of a window, dismiss alerts and refuse confirmations.
///
/// A completion may be called during the function or later, on the main thread. Destroying it without a call
/// gives the page the safe answer: an alert is dismissed, a confirmation refused. Further calls do nothing.
class UIDelegate {
public:
    virtual ~UIDelegate() = default;

    /// A page opens a window. Returns a web view made with `configuration`, which WebKit then loads, or null
    /// to refuse. A view with another configuration is a fatal error. The view must be visible, or about to
    /// be, when the function returns.
    virtual std::shared_ptr<WebView>
    createWebView(WebView& /*webView*/, const std::shared_ptr<WebViewConfiguration>& /*configuration*/,
                  const NavigationAction& /*action*/) {
        return nullptr;
    }

    /// A script of the page closed its window. The page continues to run until the view is released.
    virtual void webViewDidClose(WebView& /*webView*/) {}

    /// A page called `alert`. Its script waits for the completion.
    virtual void runJavaScriptAlertPanel(WebView& /*webView*/, const std::string& /*message*/,
                                         const FrameInfo& /*frame*/, std::function<void()> completion) {
        const auto answer = std::move(completion);
        answer();
    }

    /// A page called `confirm`. Its script waits for the completion and receives its argument as the result.
    virtual void runJavaScriptConfirmPanel(WebView& /*webView*/, const std::string& /*message*/,
                                           const FrameInfo& /*frame*/, std::function<void(bool)> completion) {
        const auto answer = std::move(completion);
        answer(false);
    }
};

} // namespace Platform
