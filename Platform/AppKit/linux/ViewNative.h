#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <vector>

namespace Platform {

/// The widget that stands for a view. Kinds of views that need more derive from it.
struct View::Native {
    virtual ~Native();

    GObjectPtr<GtkWidget> widget;
    std::vector<SignalConnection> connections;
};

} // namespace Platform
