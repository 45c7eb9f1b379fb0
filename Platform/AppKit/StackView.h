#pragma once

#include "Platform/AppKit/View.h"

namespace Platform {

/// Lays its arranged views out in one row or column.
///
/// Along the stack each view has its content's size; what room is left goes to the view with the lowest
/// hugging priority, what is missing is taken from the one with the lowest compression resistance, and what
/// then still does not fit is cut off at the trailing end: a stack never asks for more room than it is given.
class StackView : public View {
public:
    enum class Alignment { leading, centerY };

    static std::shared_ptr<StackView> create(Orientation orientation);

    Orientation orientation() const { return orientation_; }

    /// Points between two views that follow each other.
    double spacing() const { return spacing_; }
    void setSpacing(double spacing);
    const EdgeInsets& edgeInsets() const { return edgeInsets_; }
    void setEdgeInsets(const EdgeInsets& insets);
    Alignment alignment() const { return alignment_; }
    void setAlignment(Alignment alignment);

    /// The stack's own hugging, as a row that would rather be wide than high has it.
    void setHuggingPriority(LayoutPriority priority, Orientation orientation);

    void addArrangedSubview(const std::shared_ptr<View>& view);
    const std::vector<std::shared_ptr<View>>& arrangedSubviews() const { return subviews(); }

protected:
    explicit StackView(Orientation orientation);
    std::unique_ptr<Native> makeNative() override;

private:
    Orientation orientation_;
    double spacing_ = 8;
    EdgeInsets edgeInsets_;
    Alignment alignment_;
};

} // namespace Platform
