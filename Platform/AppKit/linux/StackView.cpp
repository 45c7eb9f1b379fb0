#include "Platform/AppKit/StackView.h"

#include "Platform/AppKit/linux/StackLayout.h"
#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

void StackView::setSpacing(double spacing) {
    spacing_ = spacing;
    setNeedsLayout();
}

void StackView::setEdgeInsets(const EdgeInsets& insets) {
    edgeInsets_ = insets;
    setNeedsLayout();
}

void StackView::setAlignment(Alignment alignment) {
    alignment_ = alignment;
    setNeedsLayout();
}

void StackView::setHuggingPriority(LayoutPriority priority, Orientation orientation) {
    setContentHuggingPriority(priority, orientation);
}

std::unique_ptr<View::Native> StackView::makeNative() {
    return makeContainer(*this, std::make_unique<StackLayout>(*this));
}

} // namespace Platform
