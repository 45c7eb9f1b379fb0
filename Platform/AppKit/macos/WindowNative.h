#pragma once

#include "Platform/AppKit/SheetQueue.h"
#include "Platform/AppKit/Window.h"

#import <AppKit/AppKit.h>

#include <memory>

namespace Platform {

/// The NSWindow of a window and its state. AppKit manages tabs, the first responder and the responder chain.
struct Window::Native final : SheetPresenter {
    Native(Window& owner, NSWindow* _Nonnull made)
        : window(made)
        , owner_(owner) {}

    /// Sets the controller that owns the window. The controller becomes the delegate and next responder.
    void setController(NSWindowController<NSWindowDelegate>* _Nonnull owner);

    /// Applies the settings that AppKit needs before the window is first shown.
    void prepareToShow();

    /// Called when the window is about to close. Notifies the delegate at most once.
    void willClose() noexcept;

    /// Called when the window has become the key window, which implies that its tab is selected.
    void becameKey() noexcept;

    bool showSheet(const Alert& alert) override;
    void hideSheet() override;

    NSWindow* __strong _Nonnull const window;
    NSWindowController* __strong _Nullable controller;
    /// A strong reference, because AppKit holds the delegate weakly.
    id<NSWindowDelegate> __strong _Nullable delegate;
    SheetQueue sheets{*this};

private:
    void takeFrameName() const;

    Window& owner_;
    bool isPrepared_ = false;
    /// The sheet that is currently shown, or nil.
    NSAlert* __strong _Nullable sheet_;
};

} // namespace Platform
