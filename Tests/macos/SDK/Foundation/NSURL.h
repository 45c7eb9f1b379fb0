#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSURL : NSObject <NSSecureCoding, NSCopying>
+ (nullable instancetype)URLWithString:(NSString*)URLString;
+ (nullable instancetype)URLWithString:(NSString*)URLString
             encodingInvalidCharacters:(BOOL)encodingInvalidCharacters API_AVAILABLE(macos(14.0));
@property (nullable, readonly, copy) NSString* absoluteString;
@property (nullable, readonly, copy) NSString* path;
@end

NS_ASSUME_NONNULL_END
