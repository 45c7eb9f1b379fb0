#include "Platform/AppKit/StackView.h"

#include "Platform/Foundation/MakeShared.h"

namespace Platform {

std::shared_ptr<StackView> StackView::create(Orientation orientation, double spacing,
                                             const EdgeInsets& insets) {
    return makeShared<StackView>(orientation, spacing, insets);
}

} // namespace Platform
