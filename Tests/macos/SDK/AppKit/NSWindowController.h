#pragma once

#include <AppKit/NSResponder.h>

@class NSWindow;

NS_ASSUME_NONNULL_BEGIN

@interface NSWindowController : NSResponder
- (instancetype)initWithWindow:(nullable NSWindow*)window NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property BOOL shouldCascadeWindows;
- (IBAction)showWindow:(nullable id)sender;
@end

NS_ASSUME_NONNULL_END
