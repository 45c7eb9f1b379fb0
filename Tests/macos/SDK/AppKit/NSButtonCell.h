#pragma once

#include <AppKit/NSCell.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSBezelStyle) {
    NSBezelStyleTexturedRounded = 11,
    NSBezelStyleRecessed = 13,
};

NS_ASSUME_NONNULL_END
