#include "Platform/AppKit/StackView.h"

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

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) { addSubview(view); }

} // namespace Platform
