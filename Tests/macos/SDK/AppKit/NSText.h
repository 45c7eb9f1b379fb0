#pragma once

#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@protocol NSTextDelegate <NSObject>
@end

@interface NSText : NSView
@property (nullable, assign) id<NSTextDelegate> delegate;
@property (copy) NSString* string;
@property NSRange selectedRange;
@property (getter=isFieldEditor) BOOL fieldEditor;
- (void)copy:(nullable id)sender;
- (void)cut:(nullable id)sender;
- (void)paste:(nullable id)sender;
- (void)selectAll:(nullable id)sender;
@end

typedef NS_ENUM(NSInteger, NSTextMovement) {
    NSTextMovementReturn = 0x10,
    NSTextMovementTab = 0x11,
    NSTextMovementBacktab = 0x12,
    NSTextMovementCancel = 0x17,
};

FOUNDATION_EXPORT NSString* const NSTextMovementUserInfoKey API_AVAILABLE(macos(10.13));

NS_ASSUME_NONNULL_END
