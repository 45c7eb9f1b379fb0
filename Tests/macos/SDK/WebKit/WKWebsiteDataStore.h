#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.11))
@interface WKWebsiteDataStore : NSObject <NSSecureCoding>
+ (WKWebsiteDataStore*)defaultDataStore;
+ (WKWebsiteDataStore*)nonPersistentDataStore;
@end

NS_ASSUME_NONNULL_END
