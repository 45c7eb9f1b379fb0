#pragma once

#include "Platform/AppKit/Action.h"

namespace Platform {

/// Somebody whom actions reach on their way down the responder chain: the key window's first responder and
/// the views around it, the window, its controller, the application, the application's delegate. The first
/// one that responds performs the action; nobody behind it hears of it. Main thread only.
class Responder {
public:
    Responder(const Responder&) = delete;
    Responder& operator=(const Responder&) = delete;
    virtual ~Responder() = default;

    /// Returns true for the actions that `perform` performs.
    virtual bool respondsTo(Action /*action*/) const { return false; }

    /// Called only for actions that `respondsTo` answered with true.
    virtual void perform(Action /*action*/, const ActionSender& /*sender*/) {}

    /// Asked of whoever responds to the item's action before the item is shown or its key is obeyed. May
    /// retitle the item; returns whether it is enabled.
    virtual bool validateMenuItem(MenuItem& /*item*/) { return true; }

protected:
    Responder() = default;
};

} // namespace Platform
