#pragma once

#include "Platform/WebKit/NavigationAction.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace Platform {

class WebView;
class WebViewConfiguration;

/// What a page wants of the window around it, told on the main thread; what a delegate leaves out, WebKit's
/// defaults answer.
///
/// Completions may be called at once or later, from the main thread. One that is destroyed uncalled gives the
/// page the safe answer (an alert is dismissed, a confirmation refused); calling it again does nothing.
class UIDelegate {
public:
    virtual ~UIDelegate() = default;

    /// A page opens a window. Returns the web view that the engine then loads, made with exactly this
    /// configuration, or nothing to refuse. The view must be shown, or about to be, when the call returns.
    virtual std::shared_ptr<WebView>
    createWebView(WebView& /*webView*/, const std::shared_ptr<WebViewConfiguration>& /*configuration*/,
                  const NavigationAction& /*action*/) {
        return nullptr;
    }

    /// The page closed its own window by script; it goes on until somebody lets the view go.
    virtual void webViewDidClose(WebView& /*webView*/) {}

    /// A page called `alert`. Its script waits for the completion.
    virtual void runJavaScriptAlertPanel(WebView& /*webView*/, const std::string& /*message*/,
                                         const FrameInfo& /*frame*/, std::function<void()> completion) {
        const auto answer = std::move(completion);
        answer();
    }

    /// A page called `confirm`. Its script waits for the completion, whose argument it gets as the result.
    virtual void runJavaScriptConfirmPanel(WebView& /*webView*/, const std::string& /*message*/,
                                           const FrameInfo& /*frame*/, std::function<void(bool)> completion) {
        const auto answer = std::move(completion);
        answer(false);
    }
};

} // namespace Platform
