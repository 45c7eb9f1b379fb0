#include "Platform/AppKit/linux/StackLayout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace Platform {

namespace {

Orientation across(Orientation orientation) {
    return orientation == Orientation::horizontal ? Orientation::vertical : Orientation::horizontal;
}

double insetsAlong(const EdgeInsets& insets, Orientation orientation) {
    return orientation == Orientation::horizontal ? insets.left + insets.right : insets.top + insets.bottom;
}

double gaps(double spacing, std::size_t count) {
    return count > 1 ? spacing * static_cast<double>(count - 1) : 0;
}

} // namespace

std::vector<double> distribute(const std::vector<StackItem>& items, double room) {
    std::vector<double> lengths;
    lengths.reserve(items.size());
    double left = room;
    for (const StackItem& item : items) {
        lengths.push_back(item.extent.natural);
        left -= item.extent.natural;
    }
    if (items.empty()) {
        return lengths;
    }

    if (left > 0) {
        const LayoutPriority lowest = std::ranges::min(items, {}, &StackItem::hugging).hugging;
        const auto growing = std::ranges::count(items, lowest, &StackItem::hugging);
        for (std::size_t i = 0; i < items.size(); ++i) {
            if (items[i].hugging == lowest) {
                lengths[i] += left / static_cast<double>(growing);
            }
        }
        return lengths;
    }

    std::vector<std::size_t> yielding;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].compressionResistance < LayoutPriorities::defaultHigh) {
            yielding.push_back(i);
        }
    }
    std::ranges::sort(yielding, {},
                      [&](std::size_t i) { return std::pair(items[i].compressionResistance, i); });
    for (const std::size_t i : yielding) {
        const double taken = std::min(-left, lengths[i] - items[i].extent.minimum);
        if (taken > 0) {
            lengths[i] -= taken;
            left += taken;
        }
    }
    return lengths;
}

std::vector<View*> StackLayout::shownViews() const {
    std::vector<View*> shown;
    for (const auto& view : stack_.arrangedSubviews()) {
        if (!view->isHidden()) {
            shown.push_back(view.get());
        }
    }
    return shown;
}

Extent StackLayout::measure(Orientation orientation) const {
    // The minimum is nothing: a stack cuts off what does not fit rather than ask for more room.
    const std::vector<View*> views = shownViews();
    double natural = 0;
    for (const View* view : views) {
        const double length = ViewLayout::measure(*view, orientation).natural;
        natural = orientation == stack_.orientation() ? natural + length : std::max(natural, length);
    }
    if (orientation == stack_.orientation()) {
        natural += gaps(stack_.spacing(), views.size());
    }
    return {0, natural + insetsAlong(stack_.edgeInsets(), orientation)};
}

void StackLayout::place(Size size) {
    const Orientation along = stack_.orientation();
    const EdgeInsets& insets = stack_.edgeInsets();
    const std::vector<View*> views = shownViews();

    std::vector<StackItem> items;
    items.reserve(views.size());
    for (const View* view : views) {
        items.push_back({ViewLayout::measure(*view, along), view->contentHuggingPriority(along),
                         view->contentCompressionResistancePriority(along)});
    }
    const bool horizontal = along == Orientation::horizontal;
    const double length = horizontal ? size.width : size.height;
    const double breadth = (horizontal ? size.height : size.width) - insetsAlong(insets, across(along));
    const std::vector<double> lengths =
        distribute(items, length - insetsAlong(insets, along) - gaps(stack_.spacing(), views.size()));

    double position = horizontal ? insets.left : insets.top;
    for (std::size_t i = 0; i < views.size(); ++i) {
        const View::SizeConstraints& constraints = views[i]->sizeConstraints();
        const bool fills = horizontal ? constraints.fillsSuperviewHeight : constraints.fillsSuperviewWidth;
        double thickness = ViewLayout::measure(*views[i], across(along)).natural;
        double offset = horizontal ? insets.top : insets.left;
        if (fills) {
            thickness = horizontal ? size.height : size.width;
            offset = 0;
        } else if (stack_.alignment() == StackView::Alignment::centerY) {
            offset += std::floor((breadth - thickness) / 2);
        }
        ViewLayout::setFrame(*views[i], horizontal ? Rect{position, offset, lengths[i], thickness}
                                                   : Rect{offset, position, thickness, lengths[i]});
        position += lengths[i] + stack_.spacing();
    }
}

} // namespace Platform
