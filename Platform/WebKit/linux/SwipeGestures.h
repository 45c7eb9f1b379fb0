#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

namespace Platform {

/// Enables swiping back and forward only while the view is in a window.
///
/// If gestures are enabled, WebKitGTK takes a snapshot of each page when a navigation replaces it. Version
/// 2.50.6 crashes if the view is not in a window at that time (not reported): in a closed tab, in a
/// tab that was never shown, or while a tab is dragged to another window.
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
