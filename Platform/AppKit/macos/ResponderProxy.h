#pragma once

#include "Platform/AppKit/Responder.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string_view>

/// An object that represents one of our responders in AppKit's responder chain, such as a native window
/// controller or AppKit's application delegate. Holds the responder weakly.
@protocol KeyloftResponderProxy <NSObject, NSMenuItemValidation>
- (std::shared_ptr<Platform::Responder>)keyloftResponder;
@end

/// Passes actions and menu item validation to `responder`, using Objective-C message forwarding for actions.
@interface KeyloftActionTarget : NSObject <KeyloftResponderProxy> {
@public
    std::weak_ptr<Platform::Responder> responder;
}
@end

namespace Platform {

SEL _Nonnull selectorFor(Action action);

/// Returns the action of a selector, or nothing if the selector does not have exactly one argument. The
/// action's name refers to the selector's own string, which is valid until the process exits.
std::optional<Action> actionFor(SEL _Nullable selector);

/// Returns true if the selector belongs to an action to which the proxy's responder responds.
bool respondsTo(id<KeyloftResponderProxy> _Nonnull proxy, SEL _Nonnull selector) noexcept;

/// Returns a target for the selector's action, or nil if the proxy's responder does not respond to it.
id _Nullable forwardingTarget(id<KeyloftResponderProxy> _Nonnull proxy, SEL _Nonnull selector) noexcept;

/// Implements `validateMenuItem:`. Passes the item's MenuItem to the responder and applies the title that the
/// responder sets. For items that AppKit created, such as "New Tab", passes a temporary MenuItem.
BOOL validate(id<KeyloftResponderProxy> _Nonnull proxy, NSMenuItem* _Nonnull nativeItem) noexcept;

/// Returns the AppKit target for actions that are sent to `responder`: the object that represents
/// `responder`, or a new object that the caller must keep alive. Returns nil if `responder` is null.
id _Nullable targetFor(const std::shared_ptr<Responder>& responder);

/// Returns the responder that an object in AppKit's responder chain represents, or null.
std::shared_ptr<Responder> responderOf(id _Nullable native);

/// Returns the subclass of `proxyClass` that is registered with the Objective-C runtime as `name`. Creates it
/// on the first call. If another class, such as that of a plug-in, has that name, appends a number.
Class _Nonnull registeredSubclass(Class _Nonnull proxyClass, std::string_view name);

/// Aborts the process. Called by initializers that must not be used, such as `initWithCoder:`.
[[noreturn]] void notSupported();

} // namespace Platform
