#include "Platform/AppKit/Button.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/MakeShared.h"

namespace Platform {

std::shared_ptr<Button> Button::create() { return makeShared<Button>(); }

std::shared_ptr<Button> Button::create(const std::string& title, const std::weak_ptr<Responder>& target,
                                       Action action) {
    auto button = create();
    button->title_ = title;
    button->setTarget(target, action);
    return button;
}

void Button::setImage(const Image& image) {
    assertMainThread("Button::setImage");
    if (image_ == image) {
        return;
    }
    image_ = image;
    if (Native* made = nativeIfMade()) {
        applyImage(*made);
    }
}

void Button::setBezelStyle(BezelStyle style) {
    assertMainThread("Button::setBezelStyle");
    bezelStyle_ = style;
    if (Native* made = nativeIfMade()) {
        applyStyle(*made);
    }
}

void Button::setBordered(bool bordered) {
    assertMainThread("Button::setBordered");
    bordered_ = bordered;
    if (Native* made = nativeIfMade()) {
        applyStyle(*made);
    }
}

} // namespace Platform
