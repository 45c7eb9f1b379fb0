#include "Platform/AppKit/WindowController.h"

namespace Platform {

WindowController::WindowController(std::string_view className)
    : className_(className) {}

WindowController::~WindowController() = default;

void WindowController::setWindow(const std::shared_ptr<Window>& window) {
    window_ = window;
    window->controller_ = weak_from_this();
}

void WindowController::showWindow() { window_->makeKeyAndOrderFront(); }

} // namespace Platform
