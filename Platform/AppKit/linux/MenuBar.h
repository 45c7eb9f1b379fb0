#pragma once

#include "Platform/AppKit/Menu.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>
#include <string>
#include <vector>

namespace Platform {

class Window;

/// The contents shared by all menu bars. Main thread only.
struct MenuBarSource {
    MenuBarSource() = default;
    MenuBarSource(const MenuBarSource&) = delete;
    MenuBarSource& operator=(const MenuBarSource&) = delete;
    virtual ~MenuBarSource() = default;

    /// All visible windows, in the order in which the windows menu lists them.
    virtual std::vector<std::shared_ptr<Window>> windows() const = 0;
    /// See `Application::mainWindow`.
    virtual std::shared_ptr<Window> mainWindow() const = 0;

    std::shared_ptr<Menu> mainMenu;
    /// The menu that lists the windows after its own items.
    std::weak_ptr<Menu> windowsMenu;
};

/// Shows the main menu as the menu bar of a top-level window, and handles the menu's key equivalents in that
/// window.
///
/// The items of a menu are created and validated each time the menu opens, so a menu bar that is never opened
/// contains only menu titles. The windows menu also lists the open windows and marks the main window.
class MenuBar {
public:
    /// `source`, whose main menu is not null, must outlive the menu bar.
    MenuBar(GtkWidget* toplevel, const MenuBarSource& source);
    MenuBar(const MenuBar&) = delete;
    MenuBar& operator=(const MenuBar&) = delete;
    ~MenuBar();

    GtkWidget* widget() const { return bar_.get(); }

private:
    void addActions();
    void connectPopovers();
    void opened(GtkWidget* popover);
    void closed(GtkPopover* popover);
    void rebuild(const std::shared_ptr<Menu>& menu, GMenu* model);
    void appendWindows(GMenu* model);
    void itemChosen(GSimpleAction* action, GVariant* index);
    void windowChosen(GSimpleAction* action, GVariant* index);

    const MenuBarSource& source_;
    std::shared_ptr<Menu> mainMenu_;
    GObjectPtr<GtkWidget> bar_;
    GObjectPtr<GSimpleActionGroup> actions_;
    std::vector<GtkWidget*> popovers_; // owned by `bar_`
    /// The items of the menu that was opened last.
    std::vector<std::shared_ptr<MenuItem>> items_;
    /// The windows that the windows menu listed when it was last opened.
    std::vector<std::weak_ptr<Window>> windows_;
    std::vector<SignalConnection> connections_;
};

/// Adds the key equivalents of `mainMenu` to a top-level window, as shortcuts that send the items' actions.
void addKeyEquivalents(GtkWidget* toplevel, const Menu& mainMenu);

/// Returns true if the target of the item's action enables the item. The target may change the item's title.
bool validate(MenuItem& item);

} // namespace Platform
