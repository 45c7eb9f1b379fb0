#include "Platform/AppKit/View.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/Foundation/macos/Conversions.h"

#import <QuartzCore/QuartzCore.h>

#include <algorithm>

static void layOut(NSView* native) noexcept {
    if (const auto view = Platform::viewOf(native)) {
        view->layout();
    }
}

/// A container for subviews. Its origin is the top left corner, as in `Rect`.
@interface KeyloftView : NSView
- (instancetype)initWithCoder:(NSCoder*)coder NS_UNAVAILABLE;
@end

@implementation KeyloftView
- (instancetype)initWithFrame:(NSRect)frameRect {
    return [super initWithFrame:frameRect];
}

- (instancetype)initWithCoder:(NSCoder*)coder {
    Platform::notSupported();
}

- (BOOL)isFlipped {
    return YES;
}

- (void)layout {
    [super layout];
    layOut(self);
}
@end

namespace Platform {

namespace {

NSRect toNSRect(const Rect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

/// Returns nil if the native view has not been created yet.
NSView* nsViewOf(const View& view) {
    const View::Native* const native = view.nativeIfMade();
    return native != nullptr ? native->view : nil;
}

} // namespace

void constrainEqual(NSView* view, NSLayoutAttribute attribute, NSView* other, double constant) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [NSLayoutConstraint constraintWithItem:view
                                 attribute:attribute
                                 relatedBy:NSLayoutRelationEqual
                                    toItem:other
                                 attribute:other != nil ? attribute : NSLayoutAttributeNotAnAttribute
                                multiplier:1
                                  constant:constant]
        .active = YES;
}

NSLayoutConstraintOrientation toNSOrientation(Orientation orientation) {
    return orientation == Orientation::horizontal ? NSLayoutConstraintOrientationHorizontal
                                                  : NSLayoutConstraintOrientationVertical;
}

View::View(std::string_view className)
    : className_(className) {
    assertMainThread("View");
}

View::~View() = default;

void View::addSubview(const std::shared_ptr<View>& view) {
    assertMainThread("View::addSubview");
    view->removeFromSuperview();
    subviews_.push_back(view);
    view->superview_ = weak_from_this();
    if (native_ != nullptr) {
        addNativeSubview(*view);
    }
}

void View::addNativeSubview(View& subview) {
    NSView* const added = subview.native().view;
    native_->addSubview(added);
    if (subview.fillsSuperview_) {
        for (const NSLayoutAttribute edge : {NSLayoutAttributeTop, NSLayoutAttributeLeading,
                                             NSLayoutAttributeTrailing, NSLayoutAttributeBottom}) {
            constrainEqual(added, edge, native_->view);
        }
    }
}

void View::removeFromSuperview() {
    assertMainThread("View::removeFromSuperview");
    const auto superview = superview_.lock();
    if (superview == nullptr) {
        return;
    }
    const auto keptAlive = shared_from_this();
    std::erase(superview->subviews_, keptAlive);
    superview_.reset();
    [nsViewOf(*this) removeFromSuperview];
}

Rect View::frame() const {
    assertMainThread("View::frame");
    NSView* const native = nsViewOf(*this);
    if (native == nil) {
        return frame_;
    }
    const NSRect frame = native.frame;
    // The origin of most AppKit views is the bottom left corner.
    NSView* const superview = native.superview;
    const CGFloat top = superview == nil || superview.flipped
                            ? frame.origin.y
                            : superview.bounds.size.height - frame.origin.y - frame.size.height;
    return {.x = frame.origin.x, .y = top, .width = frame.size.width, .height = frame.size.height};
}

void View::setFrame(const Rect& frame) {
    assertMainThread("View::setFrame");
    frame_ = frame;
    nsViewOf(*this).frame = toNSRect(frame);
}

void View::createNative() {
    native_ = makeNative();
    setReference(native_->view, weak_from_this());
    for (const auto& subview : subviews_) {
        addNativeSubview(*subview);
    }
}

void View::applyHidden() const { native_->view.hidden = hidden_; }

void View::applyBackgroundColor() const {
    native_->view.wantsLayer = YES;
    native_->view.layer.backgroundColor =
        backgroundColor_ == Color::controlAccent ? NSColor.controlAccentColor.CGColor : nullptr;
}

void View::applyAccessibilityLabel() const {
    native_->view.accessibilityLabel = toNSString(accessibilityLabel_);
}

void View::applyAccessibilityProgress(double fraction) const {
    NSView* const view = native_->view;
    view.accessibilityElement = YES;
    view.accessibilityRole = NSAccessibilityProgressIndicatorRole;
    view.accessibilityMinValue = @0;
    view.accessibilityMaxValue = @1;
    view.accessibilityValue = @(fraction);
}

void View::applyToolTip() { native_->view.toolTip = toolTip_.empty() ? nil : toNSString(toolTip_); }

void View::applyFixedLength(Orientation orientation) const {
    const bool isWidth = orientation == Orientation::horizontal;
    if (const auto length = fixedLengths_[indexOf(orientation)]) {
        constrainEqual(native_->view, isWidth ? NSLayoutAttributeWidth : NSLayoutAttributeHeight, nil,
                       *length);
    }
}

void View::applyExpansion(Orientation orientation) const {
    if (!expands_[indexOf(orientation)]) {
        return;
    }
    constexpr NSLayoutPriority least = 1;
    [native_->view setContentHuggingPriority:least forOrientation:toNSOrientation(orientation)];
    [native_->view setContentCompressionResistancePriority:least forOrientation:toNSOrientation(orientation)];
}

void View::setNeedsLayout() {
    assertMainThread("View::setNeedsLayout");
    nsViewOf(*this).needsLayout = YES;
}

std::unique_ptr<View::Native> View::makeNative() {
    const Class viewClass =
        className_.empty() ? KeyloftView.class : registeredSubclass(KeyloftView.class, className_);
    NSView* const made = [static_cast<KeyloftView*>([viewClass alloc]) initWithFrame:toNSRect(frame_)];
    made.wantsLayer = YES;
    return std::make_unique<Native>(made);
}

std::unique_ptr<View::Native> Box::makeNative() {
    NSBox* const box = [[NSBox alloc] initWithFrame:NSZeroRect];
    box.boxType = NSBoxSeparator;
    return std::make_unique<Native>(box);
}

} // namespace Platform
