#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <vector>

namespace Platform {

/// The widget that stands for a view. Views that need more derive from it.
struct View::Native {
    Native() = default;
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    virtual ~Native();

    /// The view's list of subviews changed.
    virtual void subviewsChanged() {}

    virtual void needsLayout() { gtk_widget_queue_allocate(widget.get()); }

    GObjectPtr<GtkWidget> widget;
    std::vector<SignalConnection> connections;
    SignalConnection toolTipConnection;
};

/// The view that `widget` or the nearest widget around it stands for, or nothing.
View* viewOfWidget(GtkWidget* widget);

} // namespace Platform
