#pragma once

#include <Foundation/NSEnumerator.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSArray<__covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
@property (readonly) NSUInteger count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)idx;
- (instancetype)initWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                          count:(NSUInteger)cnt NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
- (BOOL)containsObject:(ObjectType)anObject;
- (NSUInteger)indexOfObjectIdenticalTo:(ObjectType)anObject;
@property (nullable, nonatomic, readonly) ObjectType firstObject;
@property (nullable, nonatomic, readonly) ObjectType lastObject;
+ (instancetype)array;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)cnt;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)anObject;
- (void)removeAllObjects;
@end

NS_ASSUME_NONNULL_END
