#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSFont : NSObject <NSCopying, NSSecureCoding>
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize;
@end

NS_ASSUME_NONNULL_END
