#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>

namespace Platform {

/// Delays work until a window is painted. The work is the start of an empty view's web process, which takes
/// longer than the rest of a first load and can run while the user types the address. Main thread only.
class Prewarming {
public:
    /// Calls `start` once, in the iteration of the run loop after the window is painted, unless destroyed.
    Prewarming(GtkWidget* widget, std::function<void()> start);
    Prewarming(const Prewarming&) = delete;
    Prewarming& operator=(const Prewarming&) = delete;
    ~Prewarming() = default;

private:
    std::shared_ptr<std::function<void()>> start_;
    SignalConnection painted_;
};

/// Starts the view's web process and calls `started` when it runs. WebKitGTK does not start a process for an
/// empty page, so this evaluates a script without effect on the history or the properties.
void startWebProcess(WebKitWebView* view, std::function<void()> started);

} // namespace Platform
