#include "Platform/AppKit/Button.h"

#include "Platform/AppKit/macos/ControlNative.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

namespace {

NSButton* buttonOf(View::Native& native) { return static_cast<NSButton*>(ControlNative::of(native).control); }

NSBezelStyle toNSBezelStyle(Button::BezelStyle style) {
    return style == Button::BezelStyle::recessed ? NSBezelStyleRecessed : NSBezelStyleTexturedRounded;
}

} // namespace

std::unique_ptr<View::Native> Button::makeNative() {
    auto native = std::make_unique<ControlNative>([NSButton buttonWithTitle:toNSString(title_)
                                                                     target:nil
                                                                     action:nil]);
    applyStyle(*native);
    applyImage(*native);
    native->takeOver(*this);
    return native;
}

void Button::applyImage(Native& native) const {
    if (!image_) {
        return;
    }
    NSImage* const symbol = [NSImage imageWithSystemSymbolName:toNSString(image_->symbolName)
                                      accessibilityDescription:toNSString(image_->accessibilityDescription)];
    if (symbol == nil) {
        fatalError("there is no system symbol " + image_->symbolName);
    }
    NSButton* const button = buttonOf(native);
    button.image = symbol;
    button.imagePosition = NSImageOnly;
}

void Button::applyStyle(Native& native) const {
    NSButton* const button = buttonOf(native);
    button.bezelStyle = toNSBezelStyle(bezelStyle_);
    button.bordered = bordered_;
}

void Button::applyFont(Native& native) { ControlNative::of(native).applyFont(*this); }

} // namespace Platform
