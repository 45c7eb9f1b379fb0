#include "Platform/AppKit/LayoutConstraint.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/FatalError.h"

#include <algorithm>
#include <utility>

namespace Platform {

LayoutConstraint LayoutConstraint::equalToSuperview(const std::shared_ptr<View>& view,
                                                    LayoutAttribute attribute) {
    return {view, attribute, true, 0};
}

LayoutConstraint LayoutConstraint::equalTo(const std::shared_ptr<View>& view, LayoutAttribute attribute,
                                           double constant) {
    return {view, attribute, false, constant};
}

LayoutConstraint::LayoutConstraint(std::shared_ptr<View> view, LayoutAttribute attribute, bool toSuperview,
                                   double constant)
    : view_(std::move(view))
    , attribute_(attribute)
    , toSuperview_(toSuperview)
    , constant_(constant) {}

bool LayoutConstraint::isKnown() const {
    if (toSuperview_) {
        return attribute_ != LayoutAttribute::height;
    }
    return attribute_ == LayoutAttribute::width || attribute_ == LayoutAttribute::height;
}

void LayoutConstraint::activate(const std::vector<LayoutConstraint>& constraints) {
    assertMainThread("LayoutConstraint::activate");
    if (!std::ranges::all_of(constraints, &LayoutConstraint::isKnown)) {
        fatalError("a layout constraint has a form that this system does not know");
    }
    apply(constraints);
}

} // namespace Platform
