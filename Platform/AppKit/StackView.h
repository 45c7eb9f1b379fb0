#pragma once

#include "Platform/AppKit/View.h"

namespace Platform {

/// Arranges its subviews in one row or column. A row centers them vertically; a column makes them as wide as
/// itself.
///
/// Along the stack each view has the size of its content, and views that expand share the free space. A stack
/// requests no space in this direction: content that does not fit is cut off at the trailing end.
class StackView : public View {
public:
    /// `spacing` is the distance between two neighbors, in points.
    static std::shared_ptr<StackView> create(Orientation orientation, double spacing = 8,
                                             const EdgeInsets& insets = {});

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
