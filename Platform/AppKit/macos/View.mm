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

namespace Platform {

/// What AppKit asks of a view that lays its subviews out itself.
struct ViewLayout {
    static void layOut(NSView* native) noexcept {
        if (const auto view = viewOf(native)) {
            view->layout();
        }
    }
};

} // namespace Platform

/// A view with nothing but subviews. It counts from the top, as our views do.
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
    Platform::ViewLayout::layOut(self);
}

@end

namespace Platform {

namespace {

std::size_t indexOf(Orientation orientation) { return orientation == Orientation::horizontal ? 0 : 1; }

NSRect toNSRect(const Rect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

/// nil while there is none.
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

} // namespace

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
        native_->addSubview(view->native().view);
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
    // Most of AppKit's own views count from the bottom.
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

void View::setToolTip(const std::string& toolTip) {
    assertMainThread("View::setToolTip");
    toolTip_ = toolTip;
    if (NSView* const native = nsViewOf(*this); native != nil) {
        applyToolTip(native, toolTip);
    }
}

// Each of AppKit's views has priorities of its own until others are set: these two make the native side at
// once rather than know them.

LayoutPriority View::contentHuggingPriority(Orientation orientation) const {
    NSView* const native = nsViewOf(*this);
    return native != nil ? [native contentHuggingPriorityForOrientation:toNSOrientation(orientation)]
                         : hugging_[indexOf(orientation)];
}

void View::setContentHuggingPriority(LayoutPriority priority, Orientation orientation) {
    [native().view setContentHuggingPriority:priority forOrientation:toNSOrientation(orientation)];
}

LayoutPriority View::contentCompressionResistancePriority(Orientation orientation) const {
    NSView* const native = nsViewOf(*this);
    return native != nil
               ? [native contentCompressionResistancePriorityForOrientation:toNSOrientation(orientation)]
               : compressionResistance_[indexOf(orientation)];
}

void View::setContentCompressionResistancePriority(LayoutPriority priority, Orientation orientation) {
    [native().view setContentCompressionResistancePriority:priority
                                            forOrientation:toNSOrientation(orientation)];
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
        for (const auto& subview : subviews_) {
            native_->addSubview(subview->native().view);
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

} // namespace Platform
