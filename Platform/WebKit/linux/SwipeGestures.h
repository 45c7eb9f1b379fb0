#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

namespace Platform {

/// Swiping back and forward in a view, while that is safe.
///
/// For the gestures the engine takes a picture of each page that is left, and crashes where there is no
/// window to take it of: in a closed tab, in one that was never shown, and in one that is being dragged from
/// window to window.
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
