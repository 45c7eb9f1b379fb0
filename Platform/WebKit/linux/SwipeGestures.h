#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

namespace Platform {

/// Enables swiping back and forward while the view is in a window.
///
/// With gestures enabled, WebKitGTK takes a snapshot of each page that is left. Version 2.50.6 crashes if the
/// view is not in a window then (not reported): in a closed tab, in a tab that was never shown, and while a
/// tab is dragged from window to window.
class SwipeGestures {
public:
    explicit SwipeGestures(WebKitWebView* view);

    void setAllowed(bool allowed);

private:
    void update();

    WebKitWebView* view_;
    bool isAllowed_ = false;
    SignalConnection rootConnection_;
};

} // namespace Platform
