#include "Platform/AppKit/StackView.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/macos/ViewNative.h"

namespace Platform {

namespace {

struct StackNative final : View::Native {
    explicit StackNative(NSStackView* made)
        : Native(made)
        , stack(made) {}

    void addSubview(NSView* subview) override {
        subview.translatesAutoresizingMaskIntoConstraints = NO;
        [stack addArrangedSubview:subview];
    }

    NSStackView* const stack;
};

NSStackView* stackOf(View::Native& native) { return static_cast<StackNative&>(native).stack; }

NSStackView* stackIfMade(const StackView& view) {
    View::Native* const native = view.nativeIfMade();
    return native != nullptr ? stackOf(*native) : nil;
}

NSEdgeInsets toNSEdgeInsets(const EdgeInsets& insets) {
    return NSEdgeInsetsMake(insets.top, insets.left, insets.bottom, insets.right);
}

NSLayoutAttribute toNSLayoutAttribute(StackView::Alignment alignment) {
    return alignment == StackView::Alignment::leading ? NSLayoutAttributeLeading : NSLayoutAttributeCenterY;
}

} // namespace

void StackView::setSpacing(double spacing) {
    assertMainThread("StackView::setSpacing");
    spacing_ = spacing;
    stackIfMade(*this).spacing = spacing;
}

void StackView::setEdgeInsets(const EdgeInsets& insets) {
    assertMainThread("StackView::setEdgeInsets");
    edgeInsets_ = insets;
    stackIfMade(*this).edgeInsets = toNSEdgeInsets(insets);
}

void StackView::setAlignment(Alignment alignment) {
    assertMainThread("StackView::setAlignment");
    alignment_ = alignment;
    stackIfMade(*this).alignment = toNSLayoutAttribute(alignment);
}

void StackView::setHuggingPriority(LayoutPriority priority, Orientation orientation) {
    [stackOf(native()) setHuggingPriority:priority forOrientation:toNSOrientation(orientation)];
}

std::unique_ptr<View::Native> StackView::makeNative() {
    NSStackView* const stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.orientation = orientation_ == Orientation::horizontal ? NSUserInterfaceLayoutOrientationHorizontal
                                                                : NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = toNSLayoutAttribute(alignment_);
    stack.spacing = spacing_;
    stack.edgeInsets = toNSEdgeInsets(edgeInsets_);
    // What does not fit is cut off. Otherwise a row of many buttons would widen the window.
    [stack setClippingResistancePriority:NSLayoutPriorityDefaultLow
                          forOrientation:toNSOrientation(orientation_)];
    return std::make_unique<StackNative>(stack);
}

} // namespace Platform
