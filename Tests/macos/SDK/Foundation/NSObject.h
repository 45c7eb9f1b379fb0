#pragma once

#include <Foundation/NSObjCRuntime.h>

@class NSString, NSCoder, NSMethodSignature, NSInvocation;

NS_ASSUME_NONNULL_BEGIN

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
@property (readonly) NSUInteger hash;
@property (readonly) Class superclass;
- (Class)class;
- (instancetype)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isMemberOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol*)aProtocol;
- (BOOL)respondsToSelector:(SEL)aSelector;
@property (readonly, copy) NSString* description;
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
+ (instancetype)new;
+ (instancetype)alloc;
- (void)dealloc;
- (id)copy;
+ (Class)class;
+ (nullable Class)superclass;
+ (BOOL)instancesRespondToSelector:(SEL)aSelector;
- (void)doesNotRecognizeSelector:(SEL)aSelector;
- (nullable id)forwardingTargetForSelector:(SEL)aSelector;
- (void)forwardInvocation:(NSInvocation*)anInvocation;
- (nullable NSMethodSignature*)methodSignatureForSelector:(SEL)aSelector;
@end

NS_ASSUME_NONNULL_END
