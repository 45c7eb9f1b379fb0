#include "Platform/AppKit/LayoutConstraint.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/FatalError.h"

#include <algorithm>

namespace Platform {

LayoutConstraint LayoutConstraint::equalToSuperview(const std::shared_ptr<View>& view,
                                                    LayoutAttribute attribute) {
    LayoutConstraint constraint;
    constraint.view_ = view;
    constraint.attribute_ = attribute;
    constraint.toSuperview_ = true;
    return constraint;
}

LayoutConstraint LayoutConstraint::equalTo(const std::shared_ptr<View>& view, LayoutAttribute attribute,
                                           double constant) {
    LayoutConstraint constraint;
    constraint.view_ = view;
    constraint.attribute_ = attribute;
    constraint.constant_ = constant;
    return constraint;
}

bool LayoutConstraint::isLength() const {
    return attribute_ == LayoutAttribute::width || attribute_ == LayoutAttribute::height;
}

bool LayoutConstraint::isKnown() const {
    return toSuperview_ ? attribute_ != LayoutAttribute::height : isLength();
}

void LayoutConstraint::activate(const std::vector<LayoutConstraint>& constraints) {
    assertMainThread("LayoutConstraint::activate");
    if (!std::ranges::all_of(constraints, &LayoutConstraint::isKnown)) {
        fatalError("a layout constraint has a form that this system does not know");
    }
    apply(constraints);
}

} // namespace Platform
