#pragma once

#include <Foundation/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSDate : NSObject <NSCopying, NSSecureCoding>
@property (class, readonly, copy) NSDate* distantFuture;
@end

NS_ASSUME_NONNULL_END
