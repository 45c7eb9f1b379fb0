#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRange.h>

NS_ASSUME_NONNULL_BEGIN

typedef unsigned short unichar;

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding {
    NSASCIIStringEncoding = 1,
    NSUTF8StringEncoding = 4,
};

@interface NSString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property (readonly) NSUInteger length;
- (unichar)characterAtIndex:(NSUInteger)index;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithBytes:(const void*)bytes
                                length:(NSUInteger)len
                              encoding:(NSStringEncoding)encoding;
- (nullable NSData*)dataUsingEncoding:(NSStringEncoding)encoding allowLossyConversion:(BOOL)lossy;
- (BOOL)isEqualToString:(NSString*)aString;
- (NSString*)stringByAppendingString:(NSString*)aString;
+ (instancetype)string;
+ (instancetype)stringWithFormat:(NSString*)format, ... NS_FORMAT_FUNCTION(1, 2);
+ (nullable instancetype)stringWithUTF8String:(const char*)nullTerminatedCString;
@property (nullable, readonly) const char* UTF8String NS_RETURNS_INNER_POINTER;
@end

NS_ASSUME_NONNULL_END
