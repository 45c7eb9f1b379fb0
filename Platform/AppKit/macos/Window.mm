#include "Platform/AppKit/Window.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/macos/AlertNative.h"
#include "Platform/AppKit/macos/MenuNative.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/AppKit/macos/WindowNative.h"
#include "Platform/Foundation/MakeShared.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/macos/Conversions.h"

#include <utility>

/// The delegate of windows without a controller.
@interface KeyloftWindowDelegate : NSObject <NSWindowDelegate>
@end

@implementation KeyloftWindowDelegate
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

namespace {

NSWindowStyleMask toNSWindowStyleMask(const Window::Style& style) {
    NSWindowStyleMask mask = NSWindowStyleMaskTitled;
    if (style.closable) {
        mask |= NSWindowStyleMaskClosable;
    }
    if (style.miniaturizable) {
        mask |= NSWindowStyleMaskMiniaturizable;
    }
    if (style.resizable) {
        mask |= NSWindowStyleMaskResizable;
    }
    return mask;
}

NSWindow* makeNativeWindow(Size contentSize, const Window::Style& style) {
    NSWindow* const window =
        [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, contentSize.width, contentSize.height)
                                    styleMask:toNSWindowStyleMask(style)
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
    // `Window::Native` owns the NSWindow, so closing it must not release it as well.
    window.releasedWhenClosed = NO;
    return window;
}

/// Returns true if the window is the selected tab of its tab group, or has no tab group.
bool isSelectedTab(NSWindow* window) {
    NSWindow* const selected = window.tabGroup.selectedWindow;
    return selected == nil || selected == window;
}

} // namespace

Window::Window(Size contentSize, Style style)
    : contentSize_(contentSize)
    , style_(style) {
    assertMainThread("Window");
    native_ = std::make_unique<Native>(*this, makeNativeWindow(contentSize, style));
}

std::shared_ptr<Window> Window::create(Size contentSize, Style style) {
    auto window = makeShared<Window>(contentSize, style);
    Native& native = *window->native_;
    setReference(native.window, window);
    native.delegate = [[KeyloftWindowDelegate alloc] init];
    native.window.delegate = native.delegate;
    window->contentView_ = View::create();
    window->contentView_->window_ = window;
    native.window.contentView = window->contentView_->native().view;
    return window;
}

Window::~Window() {
    native_->sheets.close();
    native_->window.delegate = nil;
    if (!closed_) {
        [native_->window close];
    }
}

void Window::setTitle(const std::string& title) {
    assertMainThread("Window::setTitle");
    title_ = title;
    native_->window.title = toNSString(title);
}

void Window::setMinSize(Size size) {
    assertMainThread("Window::setMinSize");
    minSize_ = size;
    native_->window.minSize = NSMakeSize(size.width, size.height);
}

void Window::setContentView(const std::shared_ptr<View>& view) {
    assertMainThread("Window::setContentView");
    contentView_->window_.reset();
    contentView_ = view;
    view->window_ = weak_from_this();
    native_->window.contentView = view->native().view;
}

void Window::addTabbedWindow(const std::shared_ptr<Window>& window) {
    assertMainThread("Window::addTabbedWindow");
    if (closed_ || window->closed_) {
        return;
    }
    native_->prepareToShow();
    window->native_->prepareToShow();
    [native_->window addTabbedWindow:window->native_->window ordered:NSWindowAbove];
}

void Window::makeKeyAndOrderFront() {
    assertMainThread("Window::makeKeyAndOrderFront");
    if (closed_) {
        return;
    }
    native_->prepareToShow();
    [native_->window makeKeyAndOrderFront:nil];
}

void Window::orderOut() {
    assertMainThread("Window::orderOut");
    [native_->window orderOut:nil];
}

bool Window::isVisible() const {
    assertMainThread("Window::isVisible");
    return native_->window.visible && isSelectedTab(native_->window);
}

void Window::makeFirstResponder(const std::shared_ptr<View>& view) {
    assertMainThread("Window::makeFirstResponder");
    const auto keptAlive = shared_from_this();
    [native_->window makeFirstResponder:view->native().view];
}

std::shared_ptr<View> Window::firstResponder() const {
    assertMainThread("Window::firstResponder");
    return viewAround(native_->window.firstResponder);
}

void Window::close() {
    assertMainThread("Window::close");
    const auto keptAlive = shared_from_this();
    [native_->window close];
}

bool Window::respondsTo(Action action) const {
    return [native_->window respondsToSelector:selectorFor(action)];
}

void Window::perform(Action action, const ActionSender& /*sender*/) {
    assertMainThread("Window::perform");
    const auto keptAlive = shared_from_this();
    [NSApplication.sharedApplication sendAction:selectorFor(action) to:native_->window from:nil];
}

bool Window::validateMenuItem(MenuItem& item) {
    return [native_->window validateMenuItem:makeNativeMenuItem(item)];
}

void Window::Native::setController(NSWindowController<NSWindowDelegate>* owner) {
    controller = owner;
    window.delegate = owner;
    delegate = nil;
}

void Window::Native::prepareToShow() {
    if (std::exchange(isPrepared_, true)) {
        return;
    }
    if (!owner_.tabbingIdentifier_.empty()) {
        window.tabbingMode = NSWindowTabbingModePreferred;
        window.tabbingIdentifier = toNSString(owner_.tabbingIdentifier_);
    }
    if (owner_.centered_) {
        [window center];
    }
    // `setFrameAutosaveName:` also applies the saved frame. It fails if another window has the name.
    if (!owner_.frameAutosaveName_.empty()) {
        [window setFrameAutosaveName:toNSString(owner_.frameAutosaveName_)];
    }
}

void Window::Native::willClose() noexcept {
    // A window that is not released when closed is only ordered out.
    if (!owner_.releasedWhenClosed_ || std::exchange(owner_.closed_, true)) {
        return;
    }
    // Keep the window alive, because AppKit still uses it after this delegate method returns.
    RunLoop::main().perform([keptAlive = owner_.shared_from_this()] {});
    sheets.close();
    [window setFrameAutosaveName:@""];
    if (const auto listener = owner_.delegate_.lock()) {
        listener->windowWillClose(owner_);
    }
}

void Window::Native::becameKey() noexcept {
    if (!owner_.closed_) {
        takeFrameName();
        sheets.showFirst();
    }
}

/// Only one window at a time can have a given frame autosave name. After that window has closed, the next key
/// window takes over the name, so that its frame is saved. Its current frame does not change.
void Window::Native::takeFrameName() const {
    if (owner_.frameAutosaveName_.empty() || window.frameAutosaveName.length > 0) {
        return;
    }
    const NSRect frame = window.frame;
    if ([window setFrameAutosaveName:toNSString(owner_.frameAutosaveName_)]) {
        [window setFrame:frame display:YES];
    }
}

void Window::beginSheet(const Alert& alert, std::function<void(std::size_t)> completion) {
    assertMainThread("Window::beginSheet");
    native_->sheets.add(alert, std::move(completion));
}

bool Window::Native::showSheet(const Alert& alert) {
    // AppKit selects a window's tab to show its sheet. Hold the sheet back until the user selects the tab.
    if (!isSelectedTab(window)) {
        return false;
    }
    sheet_ = makeNativeAlert(alert);
    const auto weak = owner_.weak_from_this();
    const Alert shown = alert;
    [sheet_ beginSheetModalForWindow:window
                   completionHandler:^(NSModalResponse response) {
                       if (const auto answered = weak.lock()) {
                           // AppKit has already ended the sheet. `hideSheet` must not end it again.
                           answered->native().sheet_ = nil;
                           answered->native().sheets.answer(chosenButton(shown, response));
                       }
                   }];
    return true;
}

void Window::Native::hideSheet() {
    if (NSAlert* const shown = std::exchange(sheet_, nil)) {
        [window endSheet:shown.window];
    }
}

} // namespace Platform
