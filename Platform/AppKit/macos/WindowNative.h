#pragma once

#include "Platform/AppKit/SheetQueue.h"
#include "Platform/AppKit/Window.h"

#import <AppKit/AppKit.h>

#include <memory>

namespace Platform {

/// The NSWindow of a window and its state. AppKit itself manages tabs, first responder and responder chain.
struct Window::Native final : SheetPresenter {
    Native(Window& owner, NSWindow* _Nonnull made)
        : window(made)
        , owner_(owner) {}

    /// Gives the window an owner, which follows it in the responder chain and is its delegate.
    void setController(NSWindowController<NSWindowDelegate>* _Nonnull owner);

    /// Applies what AppKit must know before the window is first shown.
    void prepareToShow();

    /// The window is closing. Notifies the delegate once.
    void willClose() noexcept;

    /// The window has the keyboard, and its tab is the selected one.
    void becameKey() noexcept;

    bool showSheet(const Alert& alert) override;
    void hideSheet() override;

    NSWindow* __strong _Nonnull const window;
    NSWindowController* __strong _Nullable controller;
    /// AppKit holds it weakly.
    id<NSWindowDelegate> __strong _Nullable delegate;
    SheetQueue sheets{*this};

private:
    void takeFrameName() const;

    Window& owner_;
    bool isPrepared_ = false;
    /// The sheet that is shown.
    NSAlert* __strong _Nullable sheet_;
};

} // namespace Platform
