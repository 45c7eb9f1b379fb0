#pragma once

#include "Platform/AppKit/View.h"

#include <memory>
#include <vector>

namespace Platform {

enum class LayoutAttribute { top, leading, trailing, bottom, width, height };

/// One equation between a view's edge or size and its superview's, or a constant.
///
/// The forms in use are: an edge equals the same edge of the superview, the width equals the superview's
/// width, the width or the height equals a constant. Anything else stops the process when it is activated.
class LayoutConstraint {
public:
    /// `view.attribute = superview.attribute`
    static LayoutConstraint equalToSuperview(const std::shared_ptr<View>& view, LayoutAttribute attribute);

    /// `view.attribute = constant`
    static LayoutConstraint equalTo(const std::shared_ptr<View>& view, LayoutAttribute attribute,
                                    double constant);

    static void activate(const std::vector<LayoutConstraint>& constraints);

private:
    LayoutConstraint(std::shared_ptr<View> view, LayoutAttribute attribute, bool toSuperview,
                     double constant);

    /// Whether it has one of the forms in use.
    bool isKnown() const;
    /// Constraints of known forms; the system's side.
    static void apply(const std::vector<LayoutConstraint>& constraints);

    std::shared_ptr<View> view_;
    LayoutAttribute attribute_;
    bool toSuperview_;
    double constant_;
};

} // namespace Platform
