#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>

namespace Platform {

/// Starts the web process of an empty view once its window stands, while the user still types the address:
/// that takes longer than everything else of a first load. Main thread only.
class Prewarming {
public:
    /// Calls `start` in the run loop's next turn after the window has been painted, unless destroyed before.
    Prewarming(GtkWidget* widget, std::function<void()> start);
    Prewarming(const Prewarming&) = delete;
    Prewarming& operator=(const Prewarming&) = delete;
    ~Prewarming() = default;

private:
    std::shared_ptr<std::function<void()>> start_;
    SignalConnection painted_;
};

/// Starts the process; `started` is called when it has. An empty page needs none, but a script does. This one
/// does nothing, and touches neither history nor properties.
void startWebProcess(WebKitWebView* view, std::function<void()> started);

} // namespace Platform
