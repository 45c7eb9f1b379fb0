#pragma once

#include <Foundation/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSStream : NSObject
- (void)open;
- (void)close;
@end

@interface NSInputStream : NSStream
- (NSInteger)read:(uint8_t*)buffer maxLength:(NSUInteger)len;
@property (readonly) BOOL hasBytesAvailable;
@end

NS_ASSUME_NONNULL_END
