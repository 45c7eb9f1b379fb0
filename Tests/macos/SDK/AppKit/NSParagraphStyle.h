#pragma once

#include <Foundation/Foundation.h>

typedef NS_ENUM(NSUInteger, NSLineBreakMode) {
    NSLineBreakByTruncatingTail = 4,
};
