#pragma once

#include "Platform/AppKit/Responder.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string_view>

/// Represents one of our responders in AppKit's responder chain, as a window's controller and the
/// application's delegate do. Holds the responder weakly.
@protocol KeyloftResponderProxy <NSObject, NSMenuItemValidation>
- (std::shared_ptr<Platform::Responder>)keyloftResponder;
@end

/// Forwards actions and their validation to `responder`. It has no methods for their selectors.
@interface KeyloftActionTarget : NSObject <KeyloftResponderProxy> {
@public
    std::weak_ptr<Platform::Responder> responder;
}
@end

namespace Platform {

/// The selector of an action.
SEL _Nonnull selectorFor(Action action);

/// The action of a selector with one argument, or nothing. Its name is the selector's own text, which lives
/// as long as the process.
std::optional<Action> actionFor(SEL _Nullable selector);

/// Returns true if the selector is an action's and the proxy's responder responds to the action.
bool respondsTo(id<KeyloftResponderProxy> _Nonnull proxy, SEL _Nonnull selector) noexcept;

/// Returns an object that performs the selector's action on the proxy's responder, or nil if the responder
/// does not respond to the action.
id _Nullable forwardingTarget(id<KeyloftResponderProxy> _Nonnull proxy, SEL _Nonnull selector) noexcept;

/// Implements `validateMenuItem:`: passes our item to the responder and shows the title that it sets. An item
/// of AppKit's own, such as a tab bar's "New Tab", is passed on by its action.
BOOL validate(id<KeyloftResponderProxy> _Nonnull proxy, NSMenuItem* _Nonnull nativeItem) noexcept;

/// Returns AppKit's target for the responder's actions: the object that represents it, or a new one, which
/// the caller keeps. nil if `responder` is null.
id _Nullable targetFor(const std::shared_ptr<Responder>& responder);

/// Returns the responder that an object of AppKit's responder chain represents, or null.
std::shared_ptr<Responder> responderOf(id _Nullable native);

/// Returns the subclass of `proxyClass` that is registered with the Objective-C runtime as `name`, and
/// creates it on the first call. If another class has that name, for example one of a plug-in, appends a
/// number.
Class _Nonnull registeredSubclass(Class _Nonnull proxyClass, std::string_view name);

/// For initialisers that must not be called, such as `initWithCoder:`.
[[noreturn]] void notSupported();

} // namespace Platform
