#pragma once

#include <AppKit/NSParagraphStyle.h>
#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSCellImagePosition) {
    NSImageOnly = 1,
};

@interface NSCell : NSObject <NSCopying, NSCoding>
@property (getter=isScrollable) BOOL scrollable;
@property NSLineBreakMode lineBreakMode;
@property (nullable, strong) id representedObject;
@property BOOL sendsActionOnEndEditing;
@property BOOL usesSingleLineMode API_AVAILABLE(macos(10.6));
@end

NS_ASSUME_NONNULL_END
