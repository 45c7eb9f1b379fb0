#pragma once

#include <Foundation/NSObjCRuntime.h>

typedef NS_ENUM(NSUInteger, NSSearchPathDirectory) {
    NSApplicationSupportDirectory = 14,
};

typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask) {
    NSUserDomainMask = 1,
};
