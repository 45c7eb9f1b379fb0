#pragma once

#include "Platform/AppKit/StackView.h"
#include "Platform/AppKit/linux/ContainerWidget.h"

#include <vector>

namespace Platform {

/// One arranged view as the distribution along a stack sees it.
struct StackItem {
    Extent extent;
    LayoutPriority hugging = LayoutPriorities::defaultLow;
    LayoutPriority compressionResistance = LayoutPriorities::defaultHigh;
};

/// The lengths of the items in a stack whose items have `room` together. Room that is left goes to the items
/// with the lowest hugging, in equal shares; room that is missing is taken from items whose compression
/// resistance is below the usual, the lowest first. The rest hangs over.
std::vector<double> distribute(const std::vector<StackItem>& items, double room);

class StackLayout final : public ContainerLayout {
public:
    explicit StackLayout(StackView& stack)
        : stack_(stack) {}

    Extent measure(Orientation orientation) const override;
    void place(Size size) override;

private:
    std::vector<View*> shownViews() const;

    StackView& stack_;
};

} // namespace Platform
