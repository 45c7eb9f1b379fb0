#include "Platform/AppKit/Control.h"

#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

void Control::setEnabled(bool enabled) {
    enabled_ = enabled;
    if (const Native* made = nativeIfMade()) {
        gtk_widget_set_sensitive(made->widget.get(), enabled);
    }
}

void Control::setFont(const Font& font) {
    font_ = font;
    if (Native* made = nativeIfMade()) {
        applyFont(*made);
    }
}

void Control::setTarget(const std::weak_ptr<Responder>& target, Action action) {
    target_ = target;
    action_ = action;
}

void Control::setRepresentedURL(const std::optional<URL>& url) { representedURL_ = url; }

void Control::sendAction() {
    const auto action = action_;
    if (!action) {
        return;
    }
    const auto keptAlive = shared_from_this();
    Platform::sendAction(*action, target_.lock(), {.control = this});
}

} // namespace Platform
