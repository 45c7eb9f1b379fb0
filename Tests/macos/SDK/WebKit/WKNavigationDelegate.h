#pragma once

#include <Foundation/Foundation.h>

@class WKNavigation, WKNavigationAction, WKWebView;

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSInteger, WKNavigationActionPolicy) {
    WKNavigationActionPolicyCancel = 0,
    WKNavigationActionPolicyAllow = 1,
} API_AVAILABLE(macos(10.10));

@protocol WKNavigationDelegate <NSObject>
@optional
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler;
- (void)webView:(WKWebView*)webView didCommitNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView didFinishNavigation:(null_unspecified WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailNavigation:(null_unspecified WKNavigation*)navigation
            withError:(NSError*)error;
- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(null_unspecified WKNavigation*)navigation
                       withError:(NSError*)error;
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView API_AVAILABLE(macos(10.11));
@end

NS_ASSUME_NONNULL_END
