#include "Platform/AppKit/Application.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/StartArguments.h"
#include "Platform/AppKit/macos/ApplicationNative.h"
#include "Platform/AppKit/macos/MenuNative.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/Foundation/macos/Conversions.h"
#include "Platform/Foundation/macos/RunLoopTurn.h"

#include <span>
#include <utility>

/// AppKit's application delegate. Instantiated as a subclass if our delegate provides a class name.
@interface KeyloftApplicationDelegate : KeyloftActionTarget <NSApplicationDelegate>
@end

@implementation KeyloftApplicationDelegate
- (void)applicationWillFinishLaunching:(NSNotification*)notification {
    Platform::Application::Native::willFinishLaunching();
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    Platform::Application::Native::didFinishLaunching();
}

- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls {
    Platform::Application::Native::openURLs(urls);
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    return Platform::Application::Native::shouldHandleReopen(hasVisibleWindows);
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender {
    return Platform::Application::Native::shouldTerminateAfterLastWindowClosed();
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app {
    return YES;
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    Platform::Application::Native::willTerminate();
}
@end

namespace Platform {

namespace {

NSApplication* nativeApplication() { return NSApplication.sharedApplication; }

/// Waits for the next event and dispatches it. AppKit runs the run loop while it waits.
void deliverNextEvent() noexcept {
    NSApplication* const application = nativeApplication();
    if (NSEvent* const event = [application nextEventMatchingMask:NSEventMaskAny
                                                        untilDate:NSDate.distantFuture
                                                           inMode:NSDefaultRunLoopMode
                                                          dequeue:YES]) {
        [application sendEvent:event];
    }
}

/// Ends the wait in `deliverNextEvent`, which timers and run loop sources alone do not end.
void postEmptyEvent() noexcept {
    if (NSEvent* const event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                                  location:NSZeroPoint
                                             modifierFlags:0
                                                 timestamp:0
                                              windowNumber:0
                                                   context:nil
                                                   subtype:0
                                                     data1:0
                                                     data2:0]) {
        [nativeApplication() postEvent:event atStart:NO];
    }
}

} // namespace

Application::Application()
    : native_(std::make_unique<Native>()) {
    assertMainThread("Application::shared");
    [NSApplication sharedApplication];
}

Application::~Application() = default;

void Application::setActivationPolicy(ActivationPolicy policy) {
    assertMainThread("Application::setActivationPolicy");
    switch (policy) {
    case ActivationPolicy::regular:
        [nativeApplication() setActivationPolicy:NSApplicationActivationPolicyRegular];
        break;
    }
}

void Application::setDelegate(const std::weak_ptr<ApplicationDelegate>& delegate) {
    assertMainThread("Application::setDelegate");
    delegate_ = delegate;
    const auto named = delegate.lock();
    if (named == nullptr) {
        nativeApplication().delegate = nil;
        native_->delegate = nil;
        return;
    }
    const Class base = KeyloftApplicationDelegate.class;
    const Class delegateClass =
        named->className_.empty() ? base : registeredSubclass(base, named->className_);
    KeyloftApplicationDelegate* const native = [[delegateClass alloc] init];
    native->responder = delegate;
    native_->delegate = native;
    nativeApplication().delegate = native;
}

int Application::run(int argc, char** argv) {
    assertMainThread("Application::run");
    const std::span<char* const> all(argv, static_cast<std::size_t>(argc));
    native_->startURLs = urlsOf(all.subspan(all.empty() ? 0 : 1));
    // Prevent AppKit from also opening the arguments as documents.
    [NSUserDefaults.standardUserDefaults registerDefaults:@{@"NSTreatUnknownArgumentsAsOpen" : @"NO"}];
    [nativeApplication() run];
    return 0;
}

void Application::prepare() {
    assertMainThread("Application::prepare");
    [nativeApplication() finishLaunching];
    setRunLoopTurn({.wait = &deliverNextEvent, .wake = &postEmptyEvent});
}

void Application::wasStarted(const std::vector<URL>& urls) {
    const auto delegate = delegate_.lock();
    if (delegate == nullptr) {
        return;
    }
    if (!urls.empty()) {
        delegate->applicationOpenURLs(urls);
    }
    delegate->applicationDidFinishLaunching();
}

void Application::terminate() {
    assertMainThread("Application::terminate");
    [nativeApplication() terminate:nil];
}

void Application::setMainMenu(const std::shared_ptr<Menu>& menu) {
    assertMainThread("Application::setMainMenu");
    native_->mainMenu = menu;
    nativeApplication().mainMenu = menu != nullptr ? makeNativeMenu(menu) : nil;
    setWindowsMenu(native_->windowsMenu.lock());
}

void Application::setWindowsMenu(const std::shared_ptr<Menu>& menu) {
    assertMainThread("Application::setWindowsMenu");
    native_->windowsMenu = menu;
    nativeApplication().windowsMenu =
        menu != nullptr ? nativeMenuOf(*menu, nativeApplication().mainMenu) : nil;
}

std::shared_ptr<Window> Application::mainWindow() const {
    assertMainThread("Application::mainWindow");
    return windowOf(nativeApplication().mainWindow);
}

void Application::activateIgnoringOtherApps() {
    assertMainThread("Application::activateIgnoringOtherApps");
    [nativeApplication() activateIgnoringOtherApps:YES];
}

// NSUserDefaults reads "-name value" pairs as defaults. Older versions of Launch Services add "-psn_0_1".
bool isSystemArgument(std::string_view argument) {
    return argument.starts_with('-') && !argument.starts_with("--");
}

std::shared_ptr<Responder> targetForAction(Action action) {
    assertMainThread("targetForAction");
    return responderOf([nativeApplication() targetForAction:selectorFor(action)]);
}

bool Application::respondsTo(Action action) const {
    return [nativeApplication() respondsToSelector:selectorFor(action)];
}

void Application::perform(Action action, const ActionSender& /*sender*/) {
    assertMainThread("Application::perform");
    [nativeApplication() sendAction:selectorFor(action) to:nativeApplication() from:nil];
}

bool Application::validateMenuItem(MenuItem& item) {
    return [nativeApplication() validateMenuItem:makeNativeMenuItem(item)];
}

void Application::Native::willFinishLaunching() noexcept {
    if (const auto delegate = shared().delegate_.lock()) {
        delegate->applicationWillFinishLaunching();
    }
}

void Application::Native::didFinishLaunching() noexcept {
    shared().wasStarted(std::exchange(shared().native_->startURLs, {}));
}

void Application::Native::openURLs(NSArray<NSURL*>* urls) noexcept {
    const auto delegate = shared().delegate_.lock();
    if (delegate == nullptr) {
        return;
    }
    std::vector<URL> opened;
    for (NSURL* native in urls) {
        if (auto url = fromNSURL(native)) {
            opened.push_back(std::move(*url));
        }
    }
    delegate->applicationOpenURLs(opened);
}

bool Application::Native::shouldHandleReopen(bool hasVisibleWindows) noexcept {
    const auto delegate = shared().delegate_.lock();
    return delegate == nullptr || delegate->applicationShouldHandleReopen(hasVisibleWindows);
}

bool Application::Native::shouldTerminateAfterLastWindowClosed() noexcept {
    const auto delegate = shared().delegate_.lock();
    return delegate != nullptr && delegate->applicationShouldTerminateAfterLastWindowClosed();
}

/// Closes all windows and pages while AppKit still works. The process exits right after this call.
void Application::Native::willTerminate() noexcept {
    for (NSWindow* native in nativeApplication().windows) {
        if (windowOf(native) != nullptr) {
            [native close];
        }
    }
}

} // namespace Platform
