#pragma once

#include <Foundation/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSValue : NSObject <NSCopying, NSSecureCoding>
+ (NSValue*)valueWithPointer:(nullable const void*)pointer;
@property (nullable, readonly) void* pointerValue;
@end

@interface NSNumber : NSValue
+ (NSNumber*)numberWithUnsignedInt:(unsigned int)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithDouble:(double)value;
@property (readonly) BOOL boolValue;
@property (readonly) NSInteger integerValue;
@property (readonly) double doubleValue;
@end

NS_ASSUME_NONNULL_END
