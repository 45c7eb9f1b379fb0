#pragma once

#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/macos/Sheet.h"

#import <AppKit/AppKit.h>

#include <deque>
#include <memory>

namespace Platform {

/// AppKit's window and what belongs to it. Tabs, first responder and the way of actions are AppKit's own.
struct Window::Native {
    explicit Native(NSWindow* _Nonnull made)
        : window(made) {}

    /// Makes `controller` the one that owns the window and stands behind it in the responder chain.
    void setController(NSWindowController<NSWindowDelegate>* _Nonnull owner);

    /// What is to be settled before the window comes onto the screen for the first time.
    static void prepareToShow(Window& window);

    /// The window is on its way out: tells the delegate, once.
    static void willClose(Window& window) noexcept;

    /// The window has the keyboard, and its tab is the selected one.
    static void becameKey(Window& window) noexcept;

    static void addSheet(Window& window, const std::shared_ptr<Sheet>& sheet);

    NSWindow* __strong _Nonnull const window;
    NSWindowController* __strong _Nullable controller;
    /// AppKit holds it weakly.
    id<NSWindowDelegate> __strong _Nullable delegate;

private:
    /// Shows the sheet at the front as soon as nothing stands in its way.
    static void showSheet(Window& window);
    static void sheetAnswered(Window& window, NSModalResponse response) noexcept;
    static void answerSheets(Window& window);
    static void takeFrameName(const Window& window);

    bool isPrepared_ = false;
    std::deque<std::shared_ptr<Sheet>> sheets_;
    bool isSheetShown_ = false;

    friend class Window;
};

} // namespace Platform
