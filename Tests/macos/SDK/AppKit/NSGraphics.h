#pragma once

#include <Foundation/Foundation.h>

typedef NS_ENUM(NSUInteger, NSBackingStoreType) {
    NSBackingStoreBuffered = 2,
};

typedef NS_ENUM(NSInteger, NSWindowOrderingMode) {
    NSWindowAbove = 1,
};
