#include "Platform/AppKit/LayoutConstraint.h"

#include "Platform/AppKit/MainThread.h"

#include <cstdio>
#include <cstdlib>

namespace Platform {

namespace {

[[noreturn]] void stopForUnknownForm() {
    std::fputs("Keyloft: a layout constraint has a form that this system does not know\n", stderr);
    std::abort();
}

} // namespace

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

void LayoutConstraint::activate(const std::vector<LayoutConstraint>& constraints) {
    assertMainThread("LayoutConstraint::activate");
    for (const LayoutConstraint& constraint : constraints) {
        View::SizeConstraints& size = constraint.view_->sizeConstraints_;
        const bool sideways = constraint.attribute_ == LayoutAttribute::leading ||
                              constraint.attribute_ == LayoutAttribute::trailing ||
                              constraint.attribute_ == LayoutAttribute::width;
        const bool isLength = constraint.attribute_ == LayoutAttribute::width ||
                              constraint.attribute_ == LayoutAttribute::height;
        if (constraint.toSuperview_ && constraint.attribute_ != LayoutAttribute::height)
            (sideways ? size.fillsSuperviewWidth : size.fillsSuperviewHeight) = true;
        else if (!constraint.toSuperview_ && isLength)
            (sideways ? size.width : size.height) = constraint.constant_;
        else
            stopForUnknownForm();
    }
}

} // namespace Platform
