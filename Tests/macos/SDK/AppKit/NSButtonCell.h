#pragma once

#include <AppKit/NSCell.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSBezelStyle) {
    NSBezelStyleTexturedRounded API_DEPRECATED("NSBezelStyleToolbar", macos(10.0, 27.0)) = 11,
    NSBezelStyleRecessed API_DEPRECATED("NSBezelStyleAccessoryBar", macos(10.0, 27.0)) = 13,
};

NS_ASSUME_NONNULL_END
