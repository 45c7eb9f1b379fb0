#pragma once

#include <AppKit/NSButtonCell.h>
#include <AppKit/NSControl.h>
#include <AppKit/NSImage.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSButton : NSControl
+ (instancetype)buttonWithTitle:(NSString*)title
                         target:(nullable id)target
                         action:(nullable SEL)action API_AVAILABLE(macos(10.12));
@property NSBezelStyle bezelStyle;
@property (getter=isBordered) BOOL bordered;
@property (nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@end

NS_ASSUME_NONNULL_END
