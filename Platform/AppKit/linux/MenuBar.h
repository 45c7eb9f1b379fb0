#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>
#include <string>
#include <vector>

namespace Platform {

class Window;

/// Shows the main menu as a menu bar, and obeys its key equivalents in one top-level.
///
/// A menu's items are made and validated each time it opens, so that a bar that nobody opens costs only its
/// titles. The application's windows menu ends with the open windows, of which the main one is marked.
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
    /// Those that the Windows menu listed when it was last opened.
    std::vector<std::weak_ptr<Window>> windows_;
    std::vector<SignalConnection> connections_;
};

/// Adds shortcuts to the top-level that perform the items of `mainMenu`.
void addKeyEquivalents(GtkWidget* toplevel, const Menu& mainMenu);

/// Returns true if the item's action can be performed now. Asks the action's target, which may retitle the
/// item.
bool validate(MenuItem& item);

} // namespace Platform
