#pragma once

#include <Foundation/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSValue : NSObject <NSCopying, NSSecureCoding>
- (instancetype)initWithBytes:(const void*)value objCType:(const char*)type NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
+ (NSValue*)valueWithPointer:(nullable const void*)pointer;
@property (nullable, readonly) void* pointerValue;
@end

@interface NSNumber : NSValue
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithShort:(short)value;
+ (NSNumber*)numberWithUnsignedInt:(unsigned int)value;
+ (NSNumber*)numberWithLong:(long)value;
+ (NSNumber*)numberWithUnsignedLong:(unsigned long)value;
+ (NSNumber*)numberWithDouble:(double)value;
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInteger:(NSInteger)value;
@property (readonly) BOOL boolValue;
@property (readonly) int intValue;
@property (readonly) NSInteger integerValue;
@property (readonly) double doubleValue;
@end

NS_ASSUME_NONNULL_END
