#pragma once

#include "Platform/AppKit/SheetQueue.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/Sheet.h"

#include <adwaita.h>

#include <memory>

namespace Platform {

// Functions that Window calls. Application.cpp and TabHost.cpp, which depend on Window, implement them.

/// Creates an invisible top-level window of the same size as `window`, and returns its empty tab view.
AdwTabView* createTopLevel(const Window& window);
/// Shows and raises a top-level window and makes it the most recently used one.
void presentTopLevel(GtkWindow* toplevel);

/// A window's page: a child of a top-level window's tab view that contains the content and any sheet over it.
/// When the user drags its tab, the page can move to another top-level window. Therefore the top-level window
/// is looked up each time and never stored.
struct Window::Native final : SheetPresenter {
    explicit Native(Window& owner)
        : window(owner) {}

    std::shared_ptr<Window> keepAlive() const { return window.weak_from_this().lock(); }

    /// Returns true if `action` is one of the standard actions of a window.
    static bool isWindowAction(Action action);
    static std::shared_ptr<Window> ofPage(GtkWidget* page);

    void makePage();
    void applyMinSize() const;

    /// The page's tab, and the tab view and top-level window that contain it. Null if there is no tab.
    AdwTabPage* tab() const;
    AdwTabView* tabView() const;
    GtkWindow* toplevel() const;

    void insert(AdwTabView* tabs, int position) const;
    void closeTab() const;
    /// Copies the window's title to the tab and, if it is selected, to the top-level window.
    void updateTitle() const;
    /// Marks the tab as needing attention, unless it is selected, or removes the mark.
    void setNeedsAttention(bool needs) const;
    void selectNeighbour(int step) const;

    /// Makes `view` the first responder. Called right before or after GTK's focus moves to its widget.
    void focusMoved(View& view);
    /// Gives GTK's focus to the sheet or, if there is no sheet, to the first responder, as soon as the page
    /// is on the screen and no menu is open. A text field keeps its selection.
    void takeFocus();
    /// Completes a deferred `takeFocus` if that is possible now.
    void takePendingFocus();
    /// Called before the page is removed. Notifies the delegate at most once.
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
