#pragma once

#include "Platform/Foundation/URLRequest.h"
#include "Platform/WebKit/NavigationAction.h"

#import <WebKit/WebKit.h>

/// Conversions between WebKit types and Platform types.
namespace Platform {

/// Returns nil if NSURL cannot parse the request's URL.
NSURLRequest* _Nullable toNSURLRequest(const URLRequest& request);

NavigationAction fromWKNavigationAction(WKNavigationAction* _Nonnull action);
FrameInfo fromWKFrameInfo(WKFrameInfo* _Nonnull frame);

} // namespace Platform
