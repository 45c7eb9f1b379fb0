#include "Platform/AppKit/View.h"

#include "Platform/AppKit/MainThread.h"
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

void View::setHidden(bool hidden) {
    assertMainThread("View::setHidden");
    hidden_ = hidden;
    if (native_) {
        applyHidden();
    }
}

void View::setBackgroundColor(Color color) {
    assertMainThread("View::setBackgroundColor");
    backgroundColor_ = color;
    if (native_) {
        applyBackgroundColor();
    }
}

void View::setAccessibilityLabel(const std::string& label) {
    assertMainThread("View::setAccessibilityLabel");
    accessibilityLabel_ = label;
    if (native_) {
        applyAccessibilityLabel();
    }
}

void View::setAccessibilityProgress(double fraction) {
    assertMainThread("View::setAccessibilityProgress");
    accessibilityProgress_ = fraction;
    if (native_) {
        applyAccessibilityProgress(fraction);
    }
}

void View::setToolTip(const std::string& toolTip) {
    assertMainThread("View::setToolTip");
    toolTip_ = toolTip;
    if (native_) {
        applyToolTip();
    }
}

void View::setFixedLength(double length, Orientation orientation) {
    assertMainThread("View::setFixedLength");
    fixedLengths_[indexOf(orientation)] = length;
    if (native_) {
        applyFixedLength(orientation);
    }
}

void View::setExpands(Orientation orientation) {
    assertMainThread("View::setExpands");
    expands_[indexOf(orientation)] = true;
    if (native_) {
        applyExpansion(orientation);
    }
}

View::Native& View::native() {
    assertMainThread("View::native");
    if (!native_) {
        createNative();
        applyHidden();
        for (const Orientation orientation : {Orientation::horizontal, Orientation::vertical}) {
            applyFixedLength(orientation);
            applyExpansion(orientation);
        }
        if (backgroundColor_ != Color::none) {
            applyBackgroundColor();
        }
        if (!toolTip_.empty()) {
            applyToolTip();
        }
        if (!accessibilityLabel_.empty()) {
            applyAccessibilityLabel();
        }
        if (accessibilityProgress_) {
            applyAccessibilityProgress(*accessibilityProgress_);
        }
    }
    return *native_;
}

} // namespace Platform
