#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>
#include <string>
#include <vector>

namespace Platform {

class Window;

/// Shows the main menu as the menu bar of one top-level, and handles its key equivalents there.
///
/// The items of a menu are created and validated each time it opens, so a bar that is never opened costs only
/// its titles. The application's windows menu ends with the open windows; the main window is marked.
class MenuBar {
public:
    MenuBar(GtkWidget* toplevel, std::shared_ptr<Menu> mainMenu);
    MenuBar(const MenuBar&) = delete;
    MenuBar& operator=(const MenuBar&) = delete;
    ~MenuBar();

    GtkWidget* widget() const { return bar_.get(); }

private:
    void addActions();
    void connectPopovers();
    void opened(GtkWidget* popover);
    void rebuild(const std::shared_ptr<Menu>& menu, GMenu* model);
    void appendWindows(GMenu* model);
    void itemChosen(GSimpleAction* action, GVariant* index);
    void windowChosen(GSimpleAction* action, GVariant* index);

    std::shared_ptr<Menu> mainMenu_;
    GObjectPtr<GtkWidget> bar_;
    GObjectPtr<GSimpleActionGroup> actions_;
    std::vector<GtkWidget*> popovers_; // held by `bar_`
    /// The items of the menu that was opened last.
    std::vector<std::shared_ptr<MenuItem>> items_;
    /// The windows that the windows menu listed when it was last opened.
    std::vector<std::weak_ptr<Window>> windows_;
    std::vector<SignalConnection> connections_;
};

/// Adds shortcuts to the top-level that perform the items of `mainMenu`.
void addKeyEquivalents(GtkWidget* toplevel, const Menu& mainMenu);

/// Returns true if the item's action can be performed now. Asks the action's target, which may retitle the
/// item.
bool validate(MenuItem& item);

} // namespace Platform
