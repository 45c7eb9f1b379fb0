#pragma once

#include <AppKit/NSLayoutConstraint.h>
#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(10.9))
@interface NSStackView : NSView
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property NSEdgeInsets edgeInsets;
@property CGFloat spacing;
- (void)addArrangedSubview:(NSView*)view API_AVAILABLE(macos(10.11));
- (void)setClippingResistancePriority:(NSLayoutPriority)clippingResistancePriority
                       forOrientation:(NSLayoutConstraintOrientation)orientation;
- (void)setHuggingPriority:(NSLayoutPriority)huggingPriority
            forOrientation:(NSLayoutConstraintOrientation)orientation;
@end

NS_ASSUME_NONNULL_END
