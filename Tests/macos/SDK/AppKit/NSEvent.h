#pragma once

#include <Foundation/Foundation.h>

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskAny = ~0UL,
};

typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20,
};

NS_ASSUME_NONNULL_BEGIN

@interface NSEvent : NSObject <NSCopying, NSCoding>
@end

NS_ASSUME_NONNULL_END
