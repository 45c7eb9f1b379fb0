#include "Platform/AppKit/Control.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/macos/ControlNative.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

void Control::setEnabled(bool enabled) {
    assertMainThread("Control::setEnabled");
    enabled_ = enabled;
    if (Native* const made = nativeIfMade()) {
        ControlNative::of(*made).control.enabled = enabled;
    }
}

void Control::setFont(const Font& font) {
    assertMainThread("Control::setFont");
    font_ = font;
    if (Native* const made = nativeIfMade()) {
        applyFont(*made);
    }
}

void Control::setTarget(const std::weak_ptr<Responder>& target, Action action) {
    assertMainThread("Control::setTarget");
    target_ = target;
    action_ = action;
    if (Native* const made = nativeIfMade()) {
        ControlNative::of(*made).applyTarget(*this);
    }
}

void Control::setRepresentedURL(const std::optional<URL>& url) {
    assertMainThread("Control::setRepresentedURL");
    representedURL_ = url;
    if (Native* const made = nativeIfMade()) {
        ControlNative::of(*made).applyRepresentedURL(*this);
    }
}

void Control::sendAction() {
    assertMainThread("Control::sendAction");
    if (!action_) {
        return;
    }
    const auto keptAlive = shared_from_this();
    NSControl* const control = ControlNative::of(native()).control;
    [control sendAction:control.action to:control.target];
}

void ControlNative::takeOver(const Control& owner) {
    control.enabled = owner.isEnabled();
    applyFont(owner);
    applyTarget(owner);
    applyRepresentedURL(owner);
}

void ControlNative::applyTarget(const Control& owner) {
    target_ = targetFor(owner.target_.lock());
    control.target = target_;
    control.action = owner.action_ ? selectorFor(*owner.action_) : nullptr;
}

void ControlNative::applyFont(const Control& owner) {
    if (const auto& font = owner.font()) {
        control.font = [NSFont systemFontOfSize:font->systemFontSize];
    }
}

void ControlNative::applyRepresentedURL(const Control& owner) {
    const auto& url = owner.representedURL();
    control.cell.representedObject = url ? toNSURL(*url) : nil;
}

} // namespace Platform
