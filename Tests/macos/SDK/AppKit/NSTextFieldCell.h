#pragma once

#include <Foundation/Foundation.h>

typedef NS_ENUM(NSUInteger, NSTextFieldBezelStyle) {
    NSTextFieldSquareBezel = 0,
    NSTextFieldRoundedBezel = 1,
};
