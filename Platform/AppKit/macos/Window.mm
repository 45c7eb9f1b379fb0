#include "Platform/AppKit/Window.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/macos/ActionSelectors.h"
#include "Platform/AppKit/macos/MenuNative.h"
#include "Platform/AppKit/macos/NativeReference.h"
#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/AppKit/macos/WindowNative.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/macos/Conversions.h"

#include <utility>

/// The delegate of a window that no controller owns.
@interface KeyloftWindowDelegate : NSObject <NSWindowDelegate>
@end

@implementation KeyloftWindowDelegate

- (void)windowDidBecomeKey:(NSNotification*)notification {
    if (const auto window = Platform::windowOf(notification.object)) {
        Platform::Window::Native::becameKey(*window);
    }
}

- (void)windowWillClose:(NSNotification*)notification {
    if (const auto window = Platform::windowOf(notification.object)) {
        Platform::Window::Native::willClose(*window);
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
    // Ours owns it; closing is not to release it once more.
    window.releasedWhenClosed = NO;
    return window;
}

/// Whether the window is what its tabs show, be it the only one.
bool isSelectedTab(NSWindow* window) {
    NSWindow* const selected = window.tabGroup.selectedWindow;
    return selected == nil || selected == window;
}

} // namespace

Window::Window(Size contentSize, Style style)
    : contentSize_(contentSize)
    , style_(style) {
    assertMainThread("Window");
    native_ = std::make_unique<Native>(makeNativeWindow(contentSize, style));
}

std::shared_ptr<Window> Window::create(Size contentSize, Style style) {
    struct Made : Window {
        Made(Size contentSize, Style style)
            : Window(contentSize, style) {}
    };
    auto window = std::make_shared<Made>(contentSize, style);
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
    Native::answerSheets(*this);
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
    Native::prepareToShow(*this);
    Native::prepareToShow(*window);
    [native_->window addTabbedWindow:window->native_->window ordered:NSWindowAbove];
}

void Window::makeKeyAndOrderFront() {
    assertMainThread("Window::makeKeyAndOrderFront");
    if (closed_) {
        return;
    }
    Native::prepareToShow(*this);
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

void Window::Native::prepareToShow(Window& window) {
    Native& native = *window.native_;
    if (std::exchange(native.isPrepared_, true)) {
        return;
    }
    if (!window.tabbingIdentifier_.empty()) {
        native.window.tabbingMode = NSWindowTabbingModePreferred;
        native.window.tabbingIdentifier = toNSString(window.tabbingIdentifier_);
    }
    if (window.centered_) {
        [native.window center];
    }
    // Takes the frame that was kept under the name. Of several windows the first has the name: it is no
    // mistake that the others are refused.
    if (!window.frameAutosaveName_.empty()) {
        [native.window setFrameAutosaveName:toNSString(window.frameAutosaveName_)];
    }
}

void Window::Native::willClose(Window& window) noexcept {
    // Such a window is only put away.
    if (!window.releasedWhenClosed_ || std::exchange(window.closed_, true)) {
        return;
    }
    // AppKit is not done with the window yet when the delegate lets it go.
    RunLoop::main().perform([keptAlive = window.shared_from_this()] {});
    answerSheets(window);
    [window.native_->window setFrameAutosaveName:@""];
    if (const auto delegate = window.delegate_.lock()) {
        delegate->windowWillClose(window);
    }
}

void Window::Native::becameKey(Window& window) noexcept {
    if (!window.closed_) {
        takeFrameName(window);
        showSheet(window);
    }
}

/// AppKit lets one window have a frame's name. Once that one is closed the next that is used takes the name,
/// so that the frame goes on being kept; it stays where it is.
void Window::Native::takeFrameName(const Window& window) {
    NSWindow* const native = window.native_->window;
    if (window.frameAutosaveName_.empty() || native.frameAutosaveName.length > 0) {
        return;
    }
    const NSRect frame = native.frame;
    if ([native setFrameAutosaveName:toNSString(window.frameAutosaveName_)]) {
        [native setFrame:frame display:YES];
    }
}

void Window::Native::addSheet(Window& window, const std::shared_ptr<Sheet>& sheet) {
    if (window.closed_) {
        sheet->answerSafely();
        return;
    }
    window.native_->sheets_.push_back(sheet);
    showSheet(window);
}

void Window::Native::showSheet(Window& window) {
    Native& native = *window.native_;
    // AppKit selects a window's tab to show its sheet. Hold the sheet back until the user selects the tab.
    if (native.sheets_.empty() || native.isSheetShown_ || !isSelectedTab(native.window)) {
        return;
    }
    native.isSheetShown_ = true;
    const std::weak_ptr<Window> weak = window.weak_from_this();
    [native.sheets_.front()->alert() beginSheetModalForWindow:native.window
                                            completionHandler:^(NSModalResponse response) {
                                                if (const auto answered = weak.lock()) {
                                                    sheetAnswered(*answered, response);
                                                }
                                            }];
}

void Window::Native::sheetAnswered(Window& window, NSModalResponse response) noexcept {
    Native& native = *window.native_;
    if (native.sheets_.empty()) { // answered for it when the window closed
        return;
    }
    const auto answered = std::exchange(native.sheets_.front(), nullptr);
    native.sheets_.pop_front();
    native.isSheetShown_ = false;
    showSheet(window);
    answered->answer(response);
}

void Window::Native::answerSheets(Window& window) {
    Native& native = *window.native_;
    const auto unanswered = std::exchange(native.sheets_, {});
    if (std::exchange(native.isSheetShown_, false)) {
        [native.window endSheet:unanswered.front()->alert().window];
    }
    for (const auto& sheet : unanswered) {
        sheet->answerSafely();
    }
}

} // namespace Platform
