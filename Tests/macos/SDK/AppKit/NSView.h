#pragma once

#include <AppKit/NSAccessibilityProtocols.h>
#include <AppKit/NSResponder.h>

@class CALayer, NSWindow;

NS_ASSUME_NONNULL_BEGIN

@interface NSView : NSResponder <NSAccessibilityElement, NSAccessibility>
- (instancetype)initWithFrame:(NSRect)frameRect NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property (nullable, readonly, assign) NSWindow* window;
@property (nullable, readonly, assign) NSView* superview;
@property (getter=isHidden) BOOL hidden;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
@property NSRect frame;
@property NSRect bounds;
@property (readonly, getter=isFlipped) BOOL flipped;
@property BOOL needsLayout API_AVAILABLE(macos(10.7));
- (void)layout API_AVAILABLE(macos(10.7));
@property BOOL wantsLayer;
@property (nullable, strong) CALayer* layer;
@property (nullable, copy) NSString* toolTip;
@end

NS_ASSUME_NONNULL_END
