#pragma once

#include "Platform/WebKit/WebView.h"

#import <WebKit/WebKit.h>

#include <memory>
#include <span>

namespace Platform {

class WKWebViewEngine;

/// What WebKit calls a property that can be observed. A key's address stands for it in a registration.
struct ObservedKey {
    NSString* __unsafe_unretained _Nonnull keyPath;
    WebView::Property property;
};
std::span<const ObservedKey> observedKeys();

} // namespace Platform

/// Passes on what a web view of WebKit's tells and asks. Held by the engine, which it knows weakly.
@interface KeyloftWebViewDelegate : NSObject <WKNavigationDelegate, WKUIDelegate> {
@public
    std::weak_ptr<Platform::WKWebViewEngine> engine;
}
/// Any window's has changed.
- (void)occlusionStateDidChange:(NSNotification* _Nonnull)notification;
@end
