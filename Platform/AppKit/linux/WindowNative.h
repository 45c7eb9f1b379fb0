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
    /// The view has the first responder's role but not yet the toolkit's focus: the page was not on the
    /// screen.
    bool focusPending = false;
    /// The one at the front is shown.
    std::deque<std::unique_ptr<Sheet>> sheets;
    SignalConnection mapped;

    /// Returns true if a window responds to the action.
    static bool isWindowAction(Action action);

    void makePage(Window& window);
    static GtkWidget* pageOf(Window& window);
    static std::shared_ptr<Window> ofPage(GtkWidget* page);

    /// The toolkit's focus moved to a widget of this page.
    static void focusMoved(Window& window, View& view);
    /// The page came onto the screen or its window to the front.
    static void becameVisible(Window& window);
    /// Gives the toolkit's focus to the first responder, now or when the page is next on the screen.
    static void takeFocus(Window& window);
    /// The same where the focus is with no view of the page and in no open menu: the toolkit may have left it
    /// with the tab strip.
    static void takeFocusBack(Window& window);
    /// The last sheet went: the first responder has the toolkit's focus again.
    static void returnFocus(Window& window);
    /// The page is on its way out: tells the delegate, once.
    static void willClose(Window& window);

    static void addSheet(Window& window, std::unique_ptr<Sheet> sheet);
    static void showSheet(Window& window);
    static void sheetAnswered(Window& window, std::size_t button);
};

} // namespace Platform
