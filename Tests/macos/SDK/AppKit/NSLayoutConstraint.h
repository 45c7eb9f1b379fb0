#pragma once

#include <AppKit/NSUserInterfaceLayout.h>
#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

typedef float NSLayoutPriority;
static const NSLayoutPriority NSLayoutPriorityDefaultLow = 250;

typedef NS_ENUM(NSInteger, NSLayoutConstraintOrientation) {
    NSLayoutConstraintOrientationHorizontal = 0,
    NSLayoutConstraintOrientationVertical = 1,
};

typedef NS_ENUM(NSInteger, NSLayoutRelation) {
    NSLayoutRelationEqual = 0,
};

typedef NS_ENUM(NSInteger, NSLayoutAttribute) {
    NSLayoutAttributeNotAnAttribute = 0,
    NSLayoutAttributeTop = 3,
    NSLayoutAttributeBottom = 4,
    NSLayoutAttributeLeading = 5,
    NSLayoutAttributeTrailing = 6,
    NSLayoutAttributeWidth = 7,
    NSLayoutAttributeHeight = 8,
    NSLayoutAttributeCenterY = 10,
};

@interface NSLayoutConstraint : NSObject
+ (instancetype)constraintWithItem:(id)view1
                         attribute:(NSLayoutAttribute)attr1
                         relatedBy:(NSLayoutRelation)relation
                            toItem:(nullable id)view2
                         attribute:(NSLayoutAttribute)attr2
                        multiplier:(CGFloat)multiplier
                          constant:(CGFloat)c API_AVAILABLE(macos(10.7));
@property (getter=isActive) BOOL active API_AVAILABLE(macos(10.10));
@end

@interface NSView (NSConstraintBasedCompatibility)
@property BOOL translatesAutoresizingMaskIntoConstraints API_AVAILABLE(macos(10.7));
@end

@interface NSView (NSConstraintBasedLayoutLayering)
- (void)setContentHuggingPriority:(NSLayoutPriority)priority
                   forOrientation:(NSLayoutConstraintOrientation)orientation API_AVAILABLE(macos(10.7));
- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation
    API_AVAILABLE(macos(10.7));
@end

NS_ASSUME_NONNULL_END
