#pragma once

#include "Platform/AppKit/Alert.h"
#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/Sheet.h"

#include <deque>
#include <memory>

namespace Platform {

class TabHost;

/// A window's page: its content with the sheets over it, a child of some top-level's tab view. The page moves
/// from one top-level to another when its tab is dragged, so the top-level is looked up each time and never
/// kept.
struct Window::Native {
    GObjectPtr<GtkWidget> page;
    std::weak_ptr<View> firstResponder;
    /// True while the first responder waits for GTK's focus, because the page is not on the screen or a menu
    /// is open.
    bool focusPending = false;
    /// The one at the front is shown.
    std::deque<std::unique_ptr<Sheet>> sheets;
    SignalConnection mapped;

    /// Returns true if a window responds to the action.
    static bool isWindowAction(Action action);

    void makePage(Window& window);
    void applyMinSize(Size size) const;
    static GtkWidget* pageOf(Window& window);
    static std::shared_ptr<Window> ofPage(GtkWidget* page);

    /// The toolkit's focus moved to a widget of this page.
    static void focusMoved(Window& window, View& view);
    /// Gives GTK's focus to the sheet, or to the first responder if there is no sheet: now, or as soon as the
    /// page is on the screen and no menu is open. A text field keeps its selection.
    static void takeFocus(Window& window);
    /// Completes a `takeFocus` that had to wait, if it can.
    static void takePendingFocus(Window& window);
    /// Called before the page is removed. Notifies the delegate once.
    static void willClose(Window& window);

    static void addSheet(Window& window, std::unique_ptr<Sheet> sheet);
    static void showSheet(Window& window);
    static void sheetAnswered(Window& window, std::size_t button);
};

} // namespace Platform
