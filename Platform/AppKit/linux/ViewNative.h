#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <vector>

namespace Platform {

/// The widget of a view. Derived classes add state for particular kinds of views.
struct View::Native {
    Native() = default;
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native();

    /// Adds the widget of a subview in front of the others. Does nothing if the view cannot have subviews.
    virtual void addSubview(GtkWidget* /*subview*/) {}

    /// Creates and adds the missing widgets of `view`'s subviews each time the widget is mapped from now on.
    void followSubviews(View& view);

    GObjectPtr<GtkWidget> widget;
    /// True while `layout` sets the frames of the subviews.
    bool isPlacing = false;
    std::vector<SignalConnection> connections;
    SignalConnection toolTipConnection;
};

/// Sets the name of a widget for assistive technology.
void setAccessibleName(GtkWidget* widget, const std::string& name);

/// Creates a widget that groups other widgets and clips them.
GObjectPtr<GtkWidget> makeOverlay();

/// Returns the view of `widget` or of its nearest ancestor that has a view, or null if there is none.
View* viewOfWidget(GtkWidget* widget);

} // namespace Platform
