#include "Platform/AppKit/View.h"

#include "Platform/Foundation/MakeShared.h"

namespace Platform {

std::shared_ptr<View> View::create() { return makeShared<View>(); }
std::shared_ptr<Box> Box::createSeparator() { return makeShared<Box>(); }

std::shared_ptr<Window> View::window() const {
    auto window = window_.lock();
    for (auto view = superview(); view && !window; view = view->superview()) {
        window = view->window_.lock();
    }
    return window;
}

} // namespace Platform
