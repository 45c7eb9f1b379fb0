#include "Platform/AppKit/View.h"

namespace Platform {

std::shared_ptr<View> View::create() {
    struct Made : View {};
    return std::make_shared<Made>();
}

std::shared_ptr<Window> View::window() const {
    auto window = window_.lock();
    for (auto view = superview(); view && !window; view = view->superview()) {
        window = view->window_.lock();
    }
    return window;
}

} // namespace Platform
