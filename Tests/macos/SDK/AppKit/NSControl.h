#pragma once

#include <AppKit/NSCell.h>
#include <AppKit/NSFont.h>
#include <AppKit/NSText.h>
#include <AppKit/NSView.h>

@class NSTextView;

NS_ASSUME_NONNULL_BEGIN

@interface NSControl : NSView
@property (nullable, weak) id target;
@property (nullable) SEL action;
@property (getter=isEnabled) BOOL enabled;
@property (copy) NSString* stringValue;
@property (nullable, strong) __kindof NSCell* cell;
@property (nullable, copy) NSFont* font;
- (BOOL)sendAction:(nullable SEL)action to:(nullable id)target;
@end

@interface NSControl (NSControlEditableTextMethods)
- (nullable NSText*)currentEditor;
- (BOOL)abortEditing;
@end

@protocol NSControlTextEditingDelegate <NSObject>
@optional
- (void)controlTextDidBeginEditing:(NSNotification*)obj;
- (void)controlTextDidChange:(NSNotification*)obj;
- (void)controlTextDidEndEditing:(NSNotification*)obj;
- (BOOL)control:(NSControl*)control textView:(NSTextView*)textView doCommandBySelector:(SEL)commandSelector;
@end

NS_ASSUME_NONNULL_END
