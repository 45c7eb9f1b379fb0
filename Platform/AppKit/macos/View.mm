#include "Platform/AppKit/View.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/Foundation/macos/Conversions.h"

#import <QuartzCore/QuartzCore.h>

#include <algorithm>
#include <cstddef>

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

std::size_t indexOf(Orientation orientation) { return orientation == Orientation::horizontal ? 0 : 1; }
NSRect toNSRect(const Rect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

/// Returns nil if the native view has not been created yet.
NSView* nsViewOf(const View& view) {
    const View::Native* const native = view.nativeIfMade();
    return native != nullptr ? native->view : nil;
}

void applyToolTip(NSView* native, const std::string& toolTip) {
    native.toolTip = toolTip.empty() ? nil : toNSString(toolTip);
}

void applyBackgroundColor(NSView* native, Color color) {
    native.wantsLayer = YES;
    native.layer.backgroundColor =
        color == Color::controlAccent ? NSColor.controlAccentColor.CGColor : nullptr;
}

void applyAccessibilityProgress(NSView* native, double fraction) {
    native.accessibilityElement = YES;
    native.accessibilityRole = NSAccessibilityProgressIndicatorRole;
    native.accessibilityMinValue = @0;
    native.accessibilityMaxValue = @1;
    native.accessibilityValue = @(fraction);
}

void fixLength(NSView* view, double length, Orientation orientation) {
    constrainEqual(view,
                   orientation == Orientation::horizontal ? NSLayoutAttributeWidth : NSLayoutAttributeHeight,
                   nil, length);
}

void expand(NSView* view, Orientation orientation) {
    constexpr NSLayoutPriority least = 1;
    [view setContentHuggingPriority:least forOrientation:toNSOrientation(orientation)];
    [view setContentCompressionResistancePriority:least forOrientation:toNSOrientation(orientation)];
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

void View::setHidden(bool hidden) {
    assertMainThread("View::setHidden");
    hidden_ = hidden;
    nsViewOf(*this).hidden = hidden;
}

void View::setBackgroundColor(Color color) {
    assertMainThread("View::setBackgroundColor");
    backgroundColor_ = color;
    if (NSView* const native = nsViewOf(*this); native != nil) {
        applyBackgroundColor(native, color);
    }
}

void View::setAccessibilityLabel(const std::string& label) {
    assertMainThread("View::setAccessibilityLabel");
    accessibilityLabel_ = label;
    nsViewOf(*this).accessibilityLabel = toNSString(label);
}

void View::setAccessibilityProgress(double fraction) {
    assertMainThread("View::setAccessibilityProgress");
    accessibilityProgress_ = fraction;
    if (NSView* const native = nsViewOf(*this); native != nil) {
        applyAccessibilityProgress(native, fraction);
    }
}

void View::setToolTip(const std::string& toolTip) {
    assertMainThread("View::setToolTip");
    toolTip_ = toolTip;
    if (NSView* const native = nsViewOf(*this); native != nil) {
        applyToolTip(native, toolTip);
    }
}

void View::setFixedLength(double length, Orientation orientation) {
    assertMainThread("View::setFixedLength");
    fixedLengths_[indexOf(orientation)] = length;
    if (NSView* const native = nsViewOf(*this); native != nil) {
        fixLength(native, length, orientation);
    }
}

void View::setExpands(Orientation orientation) {
    assertMainThread("View::setExpands");
    expands_[indexOf(orientation)] = true;
    if (NSView* const native = nsViewOf(*this); native != nil) {
        expand(native, orientation);
    }
}

void View::setNeedsLayout() {
    assertMainThread("View::setNeedsLayout");
    nsViewOf(*this).needsLayout = YES;
}

View::Native& View::native() {
    assertMainThread("View::native");
    if (native_ == nullptr) {
        native_ = makeNative();
        NSView* const made = native_->view;
        setReference(made, weak_from_this());
        made.hidden = hidden_;
        if (backgroundColor_ != Color::none) {
            applyBackgroundColor(made, backgroundColor_);
        }
        applyToolTip(made, toolTip_);
        if (!accessibilityLabel_.empty()) {
            made.accessibilityLabel = toNSString(accessibilityLabel_);
        }
        if (accessibilityProgress_) {
            applyAccessibilityProgress(made, *accessibilityProgress_);
        }
        for (const Orientation orientation : {Orientation::horizontal, Orientation::vertical}) {
            if (const auto length = fixedLengths_[indexOf(orientation)]) {
                fixLength(made, *length, orientation);
            }
            if (expands_[indexOf(orientation)]) {
                expand(made, orientation);
            }
        }
        for (const auto& subview : subviews_) {
            addNativeSubview(*subview);
        }
    }
    return *native_;
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
