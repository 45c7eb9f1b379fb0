#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/Foundation/MakeShared.h"

namespace Platform {

/// Arranges its subviews in a row or a column. In a row, the views are centered vertically. In a column, each
/// view is as wide as the column. Along the stack, each view has the size of its content, and expanding views
/// share the free space. The stack requests no space in this direction; content that does not fit is clipped
/// at the trailing end.
class StackView : public View {
public:
    /// `spacing` is the distance between adjacent subviews, in points.
    static std::shared_ptr<StackView> create(Orientation orientation, double spacing = 8,
                                             const EdgeInsets& insets = {}) {
        return makeShared<StackView>(orientation, spacing, insets);
    }

    void addArrangedSubview(const std::shared_ptr<View>& view) { addSubview(view); }
    const std::vector<std::shared_ptr<View>>& arrangedSubviews() const { return subviews(); }

protected:
    StackView(Orientation orientation, double spacing, const EdgeInsets& insets)
        : orientation_(orientation)
        , spacing_(spacing)
        , insets_(insets) {}
    std::unique_ptr<Native> makeNative() override;

private:
    Orientation orientation_;
    double spacing_;
    EdgeInsets insets_;
};

} // namespace Platform
