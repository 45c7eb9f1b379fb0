#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>

namespace Platform {

/// Starts the web process of an empty view before the first load, but only after a window is painted.
/// Starting the process accounts for most of the duration of the first load. Main thread only.
class Prewarming {
public:
    /// Calls `start` once, after the window of `widget` is painted, unless this object is destroyed first.
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
