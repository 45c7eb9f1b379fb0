#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <optional>

namespace Platform {

/// A view that sends an action when the user operates it. The target is held weakly. If there is no target,
/// or the target has been destroyed, the action is sent along the responder chain.
class Control : public View {
public:
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);

    /// The font, or nothing if the control uses its default font.
    const std::optional<Font>& font() const { return font_; }
    void setFont(const Font& font);

    void setTarget(const std::weak_ptr<Responder>& target, Action action);
    std::optional<Action> action() const { return action_; }

    /// The URL that the control represents. On macOS it is the represented object of the control's cell.
    const std::optional<URL>& representedURL() const { return representedURL_; }
    void setRepresentedURL(const std::optional<URL>& url);

    /// Sends the action, as if the user had clicked the control or pressed Return.
    void sendAction();

protected:
    Control() = default;

    virtual void applyFont(Native& native) = 0;

private:
    friend struct ControlNative;

    bool enabled_ = true;
    std::optional<Font> font_;
    std::weak_ptr<Responder> target_;
    std::optional<Action> action_;
    std::optional<URL> representedURL_;
};

} // namespace Platform
