#pragma once

#include <Foundation/Foundation.h>

@class WKUserScript;
@protocol WKScriptMessageHandler;

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.10))
@interface WKUserContentController : NSObject <NSSecureCoding>
- (void)addUserScript:(WKUserScript*)userScript;
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)scriptMessageHandler name:(NSString*)name;
@end

NS_ASSUME_NONNULL_END
