#include "Platform/AppKit/macos/ResponderProxy.h"

#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/Control.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/WindowController.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/WindowNative.h"
#include "Platform/Foundation/DiagnosticLog.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/macos/Conversions.h"

#import <objc/runtime.h>

#include <string>

namespace Platform {

namespace {

KeyloftActionTarget* actionTarget(const std::shared_ptr<Responder>& responder) {
    KeyloftActionTarget* const target = [[KeyloftActionTarget alloc] init];
    target->responder = responder;
    return target;
}

/// Must not throw, because an exception would propagate into AppKit.
void performAction(const std::shared_ptr<Responder>& responder, SEL selector, id sender) noexcept {
    const auto action = actionFor(selector);
    if (responder == nullptr || !action) {
        return;
    }
    // Keep the sender alive, because the action may close the sender's window or menu.
    const auto control = std::dynamic_pointer_cast<Control>(viewOf(sender));
    const auto menuItem = menuItemOf(sender);
    responder->perform(*action, {.control = control.get(), .menuItem = menuItem.get()});
}

} // namespace

SEL selectorFor(Action action) { return sel_registerName((std::string(action.name()) + ':').c_str()); }

std::optional<Action> actionFor(SEL selector) {
    const std::string_view name = selector != nullptr ? sel_getName(static_cast<SEL _Nonnull>(selector)) : "";
    if (!name.ends_with(':') || name.find(':') + 1 < name.size()) {
        return std::nullopt;
    }
    return Action(name.substr(0, name.size() - 1));
}

} // namespace Platform

@implementation KeyloftActionTarget
- (std::shared_ptr<Platform::Responder>)keyloftResponder {
    return responder.lock();
}

- (BOOL)respondsToSelector:(SEL)selector {
    return Platform::respondsTo(self, selector) || [super respondsToSelector:selector];
}

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector {
    // Use the signature of `forwardInvocation:`, which also takes one object and returns nothing.
    const bool isForwarded = Platform::respondsTo(self, selector);
    return [super methodSignatureForSelector:isForwarded ? @selector(forwardInvocation:) : selector];
}

- (void)forwardInvocation:(NSInvocation*)invocation {
    __unsafe_unretained id sender = nil;
    [invocation getArgument:&sender atIndex:2];
    Platform::performAction(responder.lock(), invocation.selector, sender);
}

- (BOOL)validateMenuItem:(NSMenuItem*)menuItem {
    return Platform::validate(self, menuItem);
}
@end

namespace Platform {

bool respondsTo(id<KeyloftResponderProxy> proxy, SEL selector) noexcept {
    const auto responder = [proxy keyloftResponder];
    const auto action = actionFor(selector);
    return responder != nullptr && action && responder->respondsTo(*action);
}

id forwardingTarget(id<KeyloftResponderProxy> proxy, SEL selector) noexcept {
    return respondsTo(proxy, selector) ? actionTarget([proxy keyloftResponder]) : nil;
}

BOOL validate(id<KeyloftResponderProxy> proxy, NSMenuItem* nativeItem) noexcept {
    const auto responder = [proxy keyloftResponder];
    if (responder == nullptr) {
        return NO;
    }
    const auto ours = menuItemOf(nativeItem);
    if (ours == nullptr) {
        const auto standIn = MenuItem::create(fromNSString(nativeItem.title), actionFor(nativeItem.action));
        return responder->validateMenuItem(*standIn) ? YES : NO;
    }
    const bool enabled = responder->validateMenuItem(*ours);
    nativeItem.title = toNSString(ours->title());
    return enabled ? YES : NO;
}

id targetFor(const std::shared_ptr<Responder>& responder) {
    if (responder == nullptr) {
        return nil;
    }
    const auto controller = std::dynamic_pointer_cast<WindowController>(responder);
    if (controller != nullptr && controller->window() != nullptr) {
        return controller->window()->native().controller;
    }
    return actionTarget(responder);
}

std::shared_ptr<Responder> responderOf(id native) {
    if ([native conformsToProtocol:@protocol(KeyloftResponderProxy)]) {
        return [static_cast<id<KeyloftResponderProxy>>(native) keyloftResponder];
    }
    if (native == NSApplication.sharedApplication) {
        return {std::shared_ptr<void>(), &Application::shared()}; // never destroyed before the process exits
    }
    if (auto window = windowOf(native)) {
        return window;
    }
    return viewAround(native);
}

Class registeredSubclass(Class proxyClass, std::string_view name) {
    std::string className(name);
    Class known = objc_lookUpClass(className.c_str());
    for (int number = 2; known != Nil && class_getSuperclass(known) != proxyClass; ++number) {
        className = std::string(name) + std::to_string(number);
        known = objc_lookUpClass(className.c_str());
    }
    if (known != Nil) {
        return known;
    }
    const Class made = objc_allocateClassPair(proxyClass, className.c_str(), 0);
    if (made == Nil) {
        fatalError("the class " + className + " could not be created");
    }
    objc_registerClassPair(made);
    if (className != name) {
        diagnosticLog("another class is named " + std::string(name) + ", so " + className +
                      " is used instead");
    }
    return made;
}

void notSupported() { fatalError("not supported"); }

} // namespace Platform
