#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

@class NSOperationQueue;

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSNotificationName;

@interface NSNotification : NSObject <NSCopying, NSCoding>
@property (nullable, readonly, retain) id object;
@property (nullable, readonly, copy) NSDictionary* userInfo;
@end

@interface NSNotificationCenter : NSObject
@property (class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)aSelector
               name:(nullable NSNotificationName)aName
             object:(nullable id)anObject;
- (void)postNotificationName:(NSNotificationName)aName object:(nullable id)anObject;
- (void)removeObserver:(id)observer;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)obj
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block API_AVAILABLE(macos(10.6));
@end

NS_ASSUME_NONNULL_END
