#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding {
    NSUTF8StringEncoding = 4,
};

@interface NSString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property (readonly) NSUInteger length;
- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)len
                              encoding:(NSStringEncoding)encoding;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy;
- (NSString*)substringToIndex:(NSUInteger)to;
- (BOOL)isEqualToString:(NSString*)aString;
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@end

NS_ASSUME_NONNULL_END
