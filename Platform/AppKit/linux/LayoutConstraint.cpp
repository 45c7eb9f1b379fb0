#include "Platform/AppKit/LayoutConstraint.h"

namespace Platform {

void LayoutConstraint::apply(const std::vector<LayoutConstraint>& constraints) {
    for (const LayoutConstraint& constraint : constraints) {
        View::SizeConstraints& size = constraint.view_->sizeConstraints_;
        const bool sideways = constraint.attribute_ == LayoutAttribute::leading ||
                              constraint.attribute_ == LayoutAttribute::trailing ||
                              constraint.attribute_ == LayoutAttribute::width;
        if (constraint.toSuperview_) {
            (sideways ? size.fillsSuperviewWidth : size.fillsSuperviewHeight) = true;
        } else {
            (sideways ? size.width : size.height) = constraint.constant_;
        }
    }
}

} // namespace Platform
