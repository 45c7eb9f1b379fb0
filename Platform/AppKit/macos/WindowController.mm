#include "Platform/AppKit/WindowController.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/WindowNative.h"

/// The superclass of the native window controller classes, whose names our controllers provide.
@interface KeyloftWindowController : NSWindowController <KeyloftResponderProxy, NSWindowDelegate> {
@private
    std::weak_ptr<Platform::WindowController> _controller;
}
- (instancetype)initWithController:(const std::weak_ptr<Platform::WindowController>&)controller
                            window:(NSWindow*)window NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithWindow:(NSWindow*)window NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder*)coder NS_UNAVAILABLE;
@end

@implementation KeyloftWindowController
- (instancetype)initWithController:(const std::weak_ptr<Platform::WindowController>&)controller
                            window:(NSWindow*)window {
    self = [super initWithWindow:window];
    if (self != nil) {
        _controller = controller;
        // Open the window at its saved position. Cascading would offset it from the previous window.
        self.shouldCascadeWindows = NO;
    }
    return self;
}

- (instancetype)initWithWindow:(NSWindow*)window {
    Platform::notSupported();
}

- (instancetype)initWithCoder:(NSCoder*)coder {
    Platform::notSupported();
}

- (std::shared_ptr<Platform::Responder>)keyloftResponder {
    return _controller.lock();
}

- (BOOL)respondsToSelector:(SEL)selector {
    return Platform::respondsTo(self, selector) || [super respondsToSelector:selector];
}

- (id)forwardingTargetForSelector:(SEL)selector {
    return Platform::forwardingTarget(self, selector);
}

- (BOOL)validateMenuItem:(NSMenuItem*)menuItem {
    return Platform::validate(self, menuItem);
}

- (void)windowDidBecomeKey:(NSNotification*)notification {
    if (const auto window = Platform::windowOf(notification.object)) {
        window->native().becameKey();
    }
}

- (void)windowWillClose:(NSNotification*)notification {
    if (const auto window = Platform::windowOf(notification.object)) {
        window->native().willClose();
    }
}
@end

namespace Platform {

void WindowController::setWindow(const std::shared_ptr<Window>& window) {
    assertMainThread("WindowController::setWindow");
    window_ = window;
    window->controller_ = weak_from_this();
    Window::Native& native = window->native();
    const Class controllerClass = registeredSubclass(KeyloftWindowController.class, className_);
    native.setController([static_cast<KeyloftWindowController*>([controllerClass alloc])
        initWithController:weak_from_this()
                    window:native.window]);
}

void WindowController::showWindow() {
    assertMainThread("WindowController::showWindow");
    window_->native().prepareToShow();
    [window_->native().controller showWindow:nil];
}

} // namespace Platform
