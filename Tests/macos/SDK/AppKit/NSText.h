#pragma once

#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@protocol NSTextDelegate <NSObject>
@end

@interface NSText : NSView
@property (nullable, assign) id<NSTextDelegate> delegate;
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
    NSTextMovementLeft = 0x13,
    NSTextMovementRight = 0x14,
    NSTextMovementUp = 0x15,
    NSTextMovementDown = 0x16,
    NSTextMovementCancel = 0x17,
    NSTextMovementOther = 0,
};

FOUNDATION_EXPORT NSString* const NSTextMovementUserInfoKey API_AVAILABLE(macos(10.13));

NS_ASSUME_NONNULL_END
