#include "Platform/AppKit/StackView.h"

#include "Platform/AppKit/macos/ViewNative.h"

namespace Platform {

std::unique_ptr<View::Native> StackView::makeNative() {
    struct StackNative final : Native {
        explicit StackNative(NSStackView* made)
            : Native(made)
            , stack(made) {}

        void addSubview(NSView* subview) override {
            subview.translatesAutoresizingMaskIntoConstraints = NO;
            [stack addArrangedSubview:subview];
            if (stack.orientation == NSUserInterfaceLayoutOrientationVertical) {
                constrainEqual(subview, NSLayoutAttributeWidth, stack);
            }
        }

        NSStackView* const stack;
    };
    const bool isRow = orientation_ == Orientation::horizontal;
    NSStackView* const stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    stack.orientation =
        isRow ? NSUserInterfaceLayoutOrientationHorizontal : NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = isRow ? NSLayoutAttributeCenterY : NSLayoutAttributeLeading;
    stack.spacing = spacing_;
    stack.edgeInsets = NSEdgeInsetsMake(insets_.top, insets_.left, insets_.bottom, insets_.right);
    [stack setHuggingPriority:NSLayoutPriorityDefaultLow
               forOrientation:NSLayoutConstraintOrientationHorizontal];
    // Clip content that does not fit. Otherwise a row of many buttons would widen the window.
    [stack setClippingResistancePriority:NSLayoutPriorityDefaultLow
                          forOrientation:toNSOrientation(orientation_)];
    return std::make_unique<StackNative>(stack);
}

} // namespace Platform
