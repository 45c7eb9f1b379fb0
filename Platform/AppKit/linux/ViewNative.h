#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <vector>

namespace Platform {

/// The widget of a view. Views that need more derive from it.
struct View::Native {
    Native() = default;
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native();

    /// Adds the widget of a subview in front of the others, for views that can have subviews.
    virtual void addSubview(GtkWidget* /*subview*/) {}

    /// Makes and adds the widgets that subviews of `view` lack, whenever the widget is mapped.
    void followSubviews(View& view);

    GObjectPtr<GtkWidget> widget;
    /// True while `layout` sets the frames of the subviews.
    bool isPlacing = false;
    std::vector<SignalConnection> connections;
    SignalConnection toolTipConnection;
};

/// A widget for a group of other widgets, which cuts off what does not fit.
GObjectPtr<GtkWidget> makeOverlay();

/// The view that `widget` or the nearest widget around it stands for, or nothing.
View* viewOfWidget(GtkWidget* widget);

} // namespace Platform
