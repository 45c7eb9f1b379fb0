#include "Platform/AppKit/StackView.h"

namespace Platform {

std::shared_ptr<StackView> StackView::create(Orientation orientation, double spacing,
                                             const EdgeInsets& insets) {
    struct Made : StackView {
        Made(Orientation orientation, double spacing, const EdgeInsets& insets)
            : StackView(orientation, spacing, insets) {}
    };
    return std::make_shared<Made>(orientation, spacing, insets);
}

} // namespace Platform
