#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>

namespace Platform {

/// Delays the start of an empty view's web process until a window is painted. The start takes longer than the
/// rest of the first load, and can run while the user types the address. Main thread only.
class Prewarming {
public:
    /// Calls `start` once, right after the window of `widget` is painted, unless destroyed before.
    Prewarming(GtkWidget* widget, std::function<void()> start);
    Prewarming(const Prewarming&) = delete;
    Prewarming& operator=(const Prewarming&) = delete;
    ~Prewarming() = default;

private:
    std::shared_ptr<std::function<void()>> start_;
    SignalConnection painted_;
};

/// Starts the view's web process and calls `started` once it is running. WebKitGTK does not start a process
/// for an empty page, so this function evaluates a script that changes neither history nor properties.
void startWebProcess(WebKitWebView* view, std::function<void()> started);

} // namespace Platform
