#pragma once

#include "Platform/WebKit/WebView.h"

#import <WebKit/WebKit.h>

#include <memory>
#include <span>

namespace Platform {

class WKWebViewEngine;

/// The key path of a property. The address of an `ObservedKey` is the context of its key-value observation.
struct ObservedKey {
    NSString* __unsafe_unretained _Nonnull keyPath;
    WebView::Property property;
};
std::span<const ObservedKey> observedKeys();

} // namespace Platform

/// Forwards the callbacks of WKWebView to the engine, which owns the delegate. Holds the engine weakly.
@interface KeyloftWebViewDelegate : NSObject <WKNavigationDelegate, WKUIDelegate> {
@public
    std::weak_ptr<Platform::WKWebViewEngine> engine;
}
/// Called when the occlusion state of any window has changed.
- (void)occlusionStateDidChange:(NSNotification* _Nonnull)notification;
@end
