#pragma once

#include <Foundation/Foundation.h>

@class WKScriptMessage, WKUserContentController;

NS_ASSUME_NONNULL_BEGIN

@protocol WKScriptMessageHandler <NSObject>
@required
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message;
@end

NS_ASSUME_NONNULL_END
