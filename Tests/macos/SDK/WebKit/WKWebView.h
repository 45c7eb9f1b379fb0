#pragma once

#include <AppKit/AppKit.h>

@class WKNavigation, WKWebViewConfiguration;
@protocol WKNavigationDelegate;
@protocol WKUIDelegate;

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.10))
@interface WKWebView : NSView
- (instancetype)initWithFrame:(CGRect)frame
                configuration:(WKWebViewConfiguration*)configuration NS_DESIGNATED_INITIALIZER;
@property (nullable, nonatomic, weak) id<WKNavigationDelegate> navigationDelegate;
@property (nullable, nonatomic, weak) id<WKUIDelegate> UIDelegate;
- (nullable WKNavigation*)loadRequest:(NSURLRequest*)request;
- (nullable WKNavigation*)loadHTMLString:(NSString*)string baseURL:(nullable NSURL*)baseURL;
@property (nullable, nonatomic, readonly, copy) NSString* title;
@property (nullable, nonatomic, readonly, copy) NSURL* URL;
@property (nonatomic, readonly, getter=isLoading) BOOL loading;
@property (nonatomic, readonly) double estimatedProgress;
@property (nonatomic, readonly) BOOL canGoBack;
@property (nonatomic, readonly) BOOL canGoForward;
- (nullable WKNavigation*)goBack;
- (nullable WKNavigation*)goForward;
- (nullable WKNavigation*)reload;
- (void)stopLoading;
- (void)goBack:(nullable id)sender;
- (void)goForward:(nullable id)sender;
- (void)reload:(nullable id)sender;
- (void)stopLoading:(nullable id)sender;
@property (nonatomic) BOOL allowsBackForwardNavigationGestures;
@end

NS_ASSUME_NONNULL_END
