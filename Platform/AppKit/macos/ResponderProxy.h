#pragma once

#include "Platform/AppKit/Responder.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <string_view>

/// An object of AppKit that stands for one of our responders in AppKit's responder chain: a window's
/// controller, the application's delegate. It holds it weakly.
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

/// Returns true if the selector is an action's and the proxy's responder responds to the action.
bool respondsTo(id<KeyloftResponderProxy> _Nonnull proxy, SEL _Nonnull selector) noexcept;

/// Returns an object that performs the selector's action on the proxy's responder, or nil if that does not
/// respond to it.
id _Nullable forwardingTarget(id<KeyloftResponderProxy> _Nonnull proxy, SEL _Nonnull selector) noexcept;

/// What a proxy's `validateMenuItem:` does: asks the responder about our item, and shows the title that it
/// leaves. About an item of AppKit's own, such as a tab bar's "New Tab", it asks by the item's action.
BOOL validate(id<KeyloftResponderProxy> _Nonnull proxy, NSMenuItem* _Nonnull nativeItem) noexcept;

/// What AppKit takes as the target of `responder`'s actions: the object that stands for it, or a new one,
/// which the caller keeps. nil for nothing.
id _Nullable targetFor(const std::shared_ptr<Responder>& responder);

/// Our responder behind an object of AppKit's responder chain, or nothing.
std::shared_ptr<Responder> responderOf(id _Nullable native);

/// Returns the subclass of `proxyClass` that is registered with the Objective-C runtime as `name`, and
/// creates it on the first call. If another class has that name, for example one of a plug-in, appends a
/// number.
Class _Nonnull registeredSubclass(Class _Nonnull proxyClass, std::string_view name);

/// For initialisers that nobody may call, `initWithCoder:` above all.
[[noreturn]] void notSupported();

} // namespace Platform
