#pragma once

#include "Platform/AppKit/SheetQueue.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/Sheet.h"

#include <memory>

namespace Platform {

class TabHost;

/// A window's page: a child of a top-level window's tab view that contains the content and any sheet over it.
/// When the user drags its tab, the page can move to another top-level window. Therefore the top-level window
/// is looked up each time and never stored.
struct Window::Native final : SheetPresenter {
    explicit Native(Window& owner)
        : window(owner) {}

    std::shared_ptr<Window> keepAlive() const { return window.weak_from_this().lock(); }

    /// Returns true if windows respond to the action.
    static bool isWindowAction(Action action);
    static std::shared_ptr<Window> ofPage(GtkWidget* page);

    void makePage();
    void applyMinSize() const;

    /// Makes `view` the first responder. Called when GTK's focus has moved to the widget of `view` on this
    /// page, or is about to.
    void focusMoved(View& view);
    /// Gives GTK's focus to the sheet or, if there is no sheet, to the first responder. Defers this until the
    /// page is on the screen and no menu is open. A text field keeps its selection.
    void takeFocus();
    /// Completes a deferred `takeFocus` if that is possible now.
    void takePendingFocus();
    /// Called before the page is removed. Notifies the delegate once.
    void willClose();

    bool showSheet(const Alert& alert) override;
    void hideSheet() override;

    Window& window;
    GObjectPtr<GtkWidget> page;
    std::weak_ptr<View> firstResponder;
    /// True while `takeFocus` is deferred because the page is not on the screen or a menu is open.
    bool focusPending = false;
    SheetQueue sheets{*this};
    /// The sheet that is currently shown, or null.
    std::unique_ptr<Sheet> sheet;
    SignalConnection mapped;

private:
    void pageMapped(GtkWidget* page);
    void setContentReachable(bool reachable) const;
};

} // namespace Platform
