#pragma once

#include <AppKit/NSControl.h>
#include <AppKit/NSTextFieldCell.h>

@protocol NSTextFieldDelegate;

NS_ASSUME_NONNULL_BEGIN

@interface NSTextField : NSControl
@property (nullable, copy) NSString* placeholderString API_AVAILABLE(macos(10.10));
- (void)selectText:(nullable id)sender;
@property (nullable, weak) id<NSTextFieldDelegate> delegate;
@property NSTextFieldBezelStyle bezelStyle;
@property (getter=isBezeled) BOOL bezeled;
@end

@protocol NSTextFieldDelegate <NSControlTextEditingDelegate>
@end

NS_ASSUME_NONNULL_END
