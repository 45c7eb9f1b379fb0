#pragma once

#include <Foundation/Foundation.h>

@class NSGraphicsContext;

typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeApplicationDefined = 15,
};

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskAny = ~0UL,
};

typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20,
};

NS_ASSUME_NONNULL_BEGIN

@interface NSEvent : NSObject <NSCopying, NSCoding>
+ (nullable NSEvent*)otherEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSEventModifierFlags)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)wNum
                                context:(nullable NSGraphicsContext*)unusedPassNil
                                subtype:(short)subtype
                                  data1:(NSInteger)d1
                                  data2:(NSInteger)d2;
@end

NS_ASSUME_NONNULL_END
