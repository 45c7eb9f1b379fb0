#pragma once

#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSExceptionName;

@interface NSException : NSObject <NSCopying, NSSecureCoding>
@property (readonly, copy) NSExceptionName name;
@property (nullable, readonly, copy) NSString* reason;
@end

NS_ASSUME_NONNULL_END
