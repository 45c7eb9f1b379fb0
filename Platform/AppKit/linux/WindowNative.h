#pragma once

#include "Platform/AppKit/SheetQueue.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/Sheet.h"

#include <memory>

namespace Platform {

class TabHost;

/// A window's page: its content with the sheets over it, a child of some top-level's tab view. The page moves
/// from one top-level to another when its tab is dragged, so the top-level is looked up each time and never
/// stored.
struct Window::Native final : SheetPresenter {
    explicit Native(Window& owner)
        : window(owner) {}

    std::shared_ptr<Window> keepAlive() const { return window.weak_from_this().lock(); }

    /// Returns true if a window responds to the action.
    static bool isWindowAction(Action action);
    static std::shared_ptr<Window> ofPage(GtkWidget* page);

    void makePage();
    void applyMinSize() const;

    /// Called when GTK's focus has moved to the widget of `view` on this page.
    void focusMoved(View& view);
    /// Gives GTK's focus to the sheet, or to the first responder if there is no sheet: now, or as soon as the
    /// page is on the screen and no menu is open. A text field keeps its selection.
    void takeFocus();
    /// Completes a `takeFocus` that had to wait, if it can.
    void takePendingFocus();
    /// Called before the page is removed. Notifies the delegate once.
    void willClose();

    bool showSheet(const Alert& alert) override;
    void hideSheet() override;

    Window& window;
    GObjectPtr<GtkWidget> page;
    std::weak_ptr<View> firstResponder;
    /// True while the first responder waits for GTK's focus, because the page is not on the screen or a menu
    /// is open.
    bool focusPending = false;
    SheetQueue sheets{*this};
    /// The sheet that is shown.
    std::unique_ptr<Sheet> sheet;
    SignalConnection mapped;

private:
    void pageMapped(GtkWidget* page);
    void setContentReachable(bool reachable) const;
};

} // namespace Platform
