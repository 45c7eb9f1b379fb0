#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

@class NSTimer;

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSRunLoopMode;
FOUNDATION_EXPORT NSRunLoopMode const NSDefaultRunLoopMode;
FOUNDATION_EXPORT NSRunLoopMode const NSRunLoopCommonModes API_AVAILABLE(macos(10.5));

@interface NSRunLoop : NSObject
@property (class, readonly, strong) NSRunLoop* mainRunLoop API_AVAILABLE(macos(10.5));
- (void)addTimer:(NSTimer*)timer forMode:(NSRunLoopMode)mode;
@end

NS_ASSUME_NONNULL_END
