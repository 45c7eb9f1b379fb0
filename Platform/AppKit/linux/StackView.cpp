#include "Platform/AppKit/StackView.h"

#include "Platform/AppKit/linux/StackLayout.h"
#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

StackView::StackView(Orientation orientation)
    : orientation_(orientation)
    , alignment_(orientation == Orientation::horizontal ? Alignment::centerY : Alignment::leading) {}

std::shared_ptr<StackView> StackView::create(Orientation orientation) {
    struct Made : StackView {
        explicit Made(Orientation orientation)
            : StackView(orientation) {}
    };
    return std::make_shared<Made>(orientation);
}

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

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) { addSubview(view); }

std::unique_ptr<View::Native> StackView::makeNative() {
    return makeContainer(*this, std::make_unique<StackLayout>(*this));
}

} // namespace Platform
