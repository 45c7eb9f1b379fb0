#include "Platform/AppKit/WindowController.h"

namespace Platform {

void WindowController::setWindow(const std::shared_ptr<Window>& window) {
    window_ = window;
    window->controller_ = weak_from_this();
}

void WindowController::showWindow() { window_->makeKeyAndOrderFront(); }

} // namespace Platform
