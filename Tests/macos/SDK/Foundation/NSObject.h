#pragma once

#include <Foundation/NSObjCRuntime.h>

@class NSCoder;
@class NSInvocation;
@class NSMethodSignature;

NS_ASSUME_NONNULL_BEGIN

@protocol NSObject
- (Class)class;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol*)aProtocol;
- (BOOL)respondsToSelector:(SEL)aSelector;
@end

@protocol NSCopying
- (id)copyWithZone:(nullable struct _NSZone*)zone;
@end

@protocol NSMutableCopying
- (id)mutableCopyWithZone:(nullable struct _NSZone*)zone;
@end

@protocol NSCoding
- (void)encodeWithCoder:(NSCoder*)coder;
- (nullable instancetype)initWithCoder:(NSCoder*)coder;
@end

@protocol NSSecureCoding <NSCoding>
@property (class, readonly) BOOL supportsSecureCoding;
@end

NS_ROOT_CLASS
@interface NSObject <NSObject>
+ (void)initialize;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
+ (instancetype)alloc;
+ (Class)class;
- (void)forwardInvocation:(NSInvocation*)anInvocation;
- (nullable id)forwardingTargetForSelector:(SEL)aSelector;
- (NSMethodSignature*)methodSignatureForSelector:(SEL)aSelector;
@end

NS_ASSUME_NONNULL_END
