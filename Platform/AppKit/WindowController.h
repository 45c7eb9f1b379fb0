#pragma once

#include "Platform/AppKit/Window.h"

#include <memory>
#include <string>
#include <string_view>

namespace Platform {

/// Owns a window and follows it in the responder chain. Main thread only.
class WindowController : public Responder, public std::enable_shared_from_this<WindowController> {
public:
    WindowController(const WindowController&) = delete;
    WindowController& operator=(const WindowController&) = delete;
    ~WindowController() override = default;

    const std::shared_ptr<Window>& window() const { return window_; }

    void showWindow();

protected:
    /// On macOS, `className` names the Objective-C class of the native controller. Ignored on Linux.
    explicit WindowController(std::string_view className)
        : className_(className) {}

    /// Sets the window. Call it once, after a `shared_ptr` has taken ownership of the controller.
    void setWindow(const std::shared_ptr<Window>& window);

private:
    std::string className_;
    std::shared_ptr<Window> window_;
};

} // namespace Platform
