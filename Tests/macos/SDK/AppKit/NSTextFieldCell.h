#pragma once

#include <Foundation/Foundation.h>

typedef NS_ENUM(NSUInteger, NSTextFieldBezelStyle) {
    NSTextFieldRoundedBezel = 1,
};
