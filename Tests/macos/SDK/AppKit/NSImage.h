#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage : NSObject <NSCopying, NSSecureCoding>
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description API_AVAILABLE(macos(11.0));
@end

NS_ASSUME_NONNULL_END
