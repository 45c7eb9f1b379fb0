#pragma once

#include "Platform/Foundation/URLRequest.h"
#include "Platform/WebKit/NavigationAction.h"

#import <WebKit/WebKit.h>

/// WebKit's values and ours.
namespace Platform {

/// nil where NSURL takes the request's URL for none.
NSURLRequest* _Nullable toNSURLRequest(const URLRequest& request);

NavigationAction fromWKNavigationAction(WKNavigationAction* _Nonnull action);
FrameInfo fromWKFrameInfo(WKFrameInfo* _Nonnull frame);

} // namespace Platform
