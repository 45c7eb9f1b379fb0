#pragma once

#include "Platform/AppKit/Action.h"

#include <memory>

namespace Platform {

/// An object in the responder chain. The chain consists of the key window's first responder and its
/// superviews, the window, its controller, the application and the application's delegate. The first object
/// that responds to an action performs it, and the objects after it do not receive it. Main thread only.
class Responder {
public:
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;
    virtual ~Responder() = default;

    /// Returns true if `perform` handles the action.
    virtual bool respondsTo(Action /*action*/) const { return false; }

    /// Performs the action. Called only if `respondsTo` returns true for it.
    virtual void perform(Action /*action*/, const ActionSender& /*sender*/) {}

    /// Returns true if the item is enabled. May change the item's title. Called on the responder that would
    /// receive the item's action, before the item is shown or its key equivalent is performed.
    virtual bool validateMenuItem(MenuItem& /*item*/) { return true; }

protected:
    Responder() = default;
};

/// Sends an action to `target` or, if `target` is null, to the first object in the responder chain that
/// responds to it. Returns true if the action was performed.
bool sendAction(Action action, const std::shared_ptr<Responder>& target, const ActionSender& sender);

/// Returns the responder that would currently receive an action without a target, or null.
std::shared_ptr<Responder> targetForAction(Action action);

} // namespace Platform
