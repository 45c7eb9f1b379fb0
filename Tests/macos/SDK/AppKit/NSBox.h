#pragma once

#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSBoxType) {
    NSBoxSeparator = 2,
};

@interface NSBox : NSView
@property NSBoxType boxType;
@end

NS_ASSUME_NONNULL_END
