#pragma once

#include <Foundation/Foundation.h>

@class WKUserContentController, WKWebsiteDataStore;

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.10))
@interface WKWebViewConfiguration : NSObject <NSSecureCoding, NSCopying>
@property (nonatomic, strong) WKUserContentController* userContentController;
@property (nonatomic, strong) WKWebsiteDataStore* websiteDataStore API_AVAILABLE(macos(10.11));
@end

NS_ASSUME_NONNULL_END
