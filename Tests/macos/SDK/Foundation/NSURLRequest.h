#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSStream.h>
#include <Foundation/NSURL.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSURLRequestCachePolicy) {
    NSURLRequestUseProtocolCachePolicy = 0,
};

@interface NSURLRequest : NSObject <NSSecureCoding, NSCopying, NSMutableCopying>
+ (instancetype)requestWithURL:(NSURL*)URL
                   cachePolicy:(NSURLRequestCachePolicy)cachePolicy
               timeoutInterval:(NSTimeInterval)timeoutInterval;
@property (nullable, readonly, copy) NSURL* URL;
@end

@interface NSURLRequest (NSHTTPURLRequest)
@property (nullable, readonly, copy) NSString* HTTPMethod;
@property (nullable, readonly, copy) NSData* HTTPBody;
@property (nullable, readonly, retain) NSInputStream* HTTPBodyStream;
@end

NS_ASSUME_NONNULL_END
