#include "Platform/WebKit/macos/WebViewDelegate.h"

#include "Platform/WebKit/macos/WKWebViewEngine.h"

#include <algorithm>
#include <array>

namespace Platform {

std::span<const ObservedKey> observedKeys() {
    using Property = WebView::Property;
    static const std::array<ObservedKey, 6> keys = {{
        {@"title", Property::title},
        {@"URL", Property::url},
        {@"canGoBack", Property::canGoBack},
        {@"canGoForward", Property::canGoForward},
        {@"estimatedProgress", Property::estimatedProgress},
        {@"loading", Property::isLoading},
    }};
    return keys;
}

} // namespace Platform

using Platform::NavigationActionPolicy;
using Platform::WKWebViewEngine;

@implementation KeyloftWebViewDelegate
/// Hides the policy method if there is no policy delegate, so that WKWebView applies its default policy.
- (BOOL)respondsToSelector:(SEL)selector {
    if (selector != @selector(webView:decidePolicyForNavigationAction:decisionHandler:)) {
        return [super respondsToSelector:selector];
    }
    const auto asked = engine.lock();
    return asked != nullptr && asked->asksForPolicy();
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    const auto keys = Platform::observedKeys();
    const auto key = std::ranges::find_if(keys, [context](const auto& known) { return &known == context; });
    if (key == keys.end()) {
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
    } else if (const auto told = engine.lock()) {
        told->propertyChanged(key->property);
    }
}

- (void)occlusionStateDidChange:(NSNotification*)notification {
    if (const auto told = engine.lock()) {
        told->windowVisibilityChanged();
    }
}

// Methods of WKNavigationDelegate.

- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler {
    const auto reply = std::make_shared<WKWebViewEngine::PolicyReply>(
        [decisionHandler](NavigationActionPolicy policy) {
            decisionHandler(policy == NavigationActionPolicy::allow ? WKNavigationActionPolicyAllow
                                                                    : WKNavigationActionPolicyCancel);
        },
        NavigationActionPolicy::cancel);
    if (const auto asked = engine.lock()) {
        asked->decidePolicyFor(navigationAction, reply);
    }
}

- (void)webView:(WKWebView*)webView didCommitNavigation:(WKNavigation*)navigation {
    if (const auto told = engine.lock()) {
        told->didCommit();
    }
}

- (void)webView:(WKWebView*)webView didFinishNavigation:(WKNavigation*)navigation {
    if (const auto told = engine.lock()) {
        told->didFinish();
    }
}

- (void)webView:(WKWebView*)webView didFailNavigation:(WKNavigation*)navigation withError:(NSError*)error {
    if (const auto told = engine.lock()) {
        told->didFail(error, true);
    }
}

- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)error {
    if (const auto told = engine.lock()) {
        told->didFail(error, false);
    }
}

- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView {
    if (const auto told = engine.lock()) {
        told->contentProcessEnded();
    }
}

// Methods of WKUIDelegate.

- (WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures {
    const auto asked = engine.lock();
    return asked != nullptr ? asked->createNativeView(configuration, navigationAction) : nil;
}

- (void)webViewDidClose:(WKWebView*)webView {
    if (const auto told = engine.lock()) {
        told->didClose();
    }
}

- (void)webView:(WKWebView*)webView
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler {
    const auto reply =
        std::make_shared<WKWebViewEngine::AlertReply>([completionHandler] { completionHandler(); });
    if (const auto asked = engine.lock()) {
        asked->runAlertPanelFor(message, frame, reply);
    }
}

- (void)webView:(WKWebView*)webView
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL))completionHandler {
    const auto reply = std::make_shared<WKWebViewEngine::ConfirmReply>(
        [completionHandler](bool confirmed) { completionHandler(confirmed ? YES : NO); }, false);
    if (const auto asked = engine.lock()) {
        asked->runConfirmPanelFor(message, frame, reply);
    }
}
@end
