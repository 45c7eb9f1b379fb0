#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <vector>

namespace Platform {

/// The widget of a view. Derived classes add the state that some kinds of views need.
struct View::Native {
    Native() = default;
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native();

    /// Adds the widget of a subview in front of the others, for views that can have subviews.
    virtual void addSubview(GtkWidget* /*subview*/) {}

    /// Creates and adds missing widgets of `view`'s subviews whenever its own widget is mapped.
    void followSubviews(View& view);

    GObjectPtr<GtkWidget> widget;
    /// True while `layout` sets the frames of the subviews.
    bool isPlacing = false;
    std::vector<SignalConnection> connections;
    SignalConnection toolTipConnection;
};

/// Creates a widget that contains a group of other widgets and clips them.
GObjectPtr<GtkWidget> makeOverlay();

/// Returns the view that `widget` or its nearest ancestor belongs to, or null.
View* viewOfWidget(GtkWidget* widget);

} // namespace Platform
