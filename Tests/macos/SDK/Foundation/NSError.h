#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSErrorDomain;
typedef NSString* NSErrorUserInfoKey;

FOUNDATION_EXPORT NSErrorDomain const NSURLErrorDomain;
FOUNDATION_EXPORT NSString* const NSURLErrorFailingURLErrorKey API_AVAILABLE(macos(10.6));
FOUNDATION_EXPORT NSString* const
    NSURLErrorFailingURLStringErrorKey API_DEPRECATED("NSURLErrorFailingURLErrorKey", macos(10.6, 15.4));

@interface NSError : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)errorWithDomain:(NSErrorDomain)domain
                           code:(NSInteger)code
                       userInfo:(nullable NSDictionary<NSErrorUserInfoKey, id>*)dict;
@property (readonly, copy) NSErrorDomain domain;
@property (readonly) NSInteger code;
@property (readonly, copy) NSDictionary<NSErrorUserInfoKey, id>* userInfo;
@property (readonly, copy) NSString* localizedDescription;
@end

NS_ASSUME_NONNULL_END
