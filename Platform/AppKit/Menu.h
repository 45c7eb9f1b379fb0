#pragma once

#include "Platform/AppKit/Action.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

class Menu;

/// The modifiers of a key equivalent except Shift. On Linux, Command is Control and Option is Alt.
enum class ModifierFlags { command, optionCommand };

/// A menu item. It has no target; its action is sent along the responder chain.
class MenuItem {
public:
    /// An item with neither an action nor a submenu is disabled. `keyEquivalent` is empty or one character.
    static std::shared_ptr<MenuItem> create(const std::string& title, std::optional<Action> action,
                                            const std::string& keyEquivalent = "");
    /// Creates a separator, a line between groups of items.
    static std::shared_ptr<MenuItem> createSeparator();

    /// The title, which is shown verbatim, without interpreting mnemonics.
    const std::string& title() const { return title_; }
    void setTitle(const std::string& title) { title_ = title; }

    /// The action and the key equivalent with which the item was created.
    std::optional<Action> action() const { return action_; }
    const std::string& keyEquivalent() const { return keyEquivalent_; }
    /// The modifiers of the key equivalent. The default is Command.
    ModifierFlags keyEquivalentModifiers() const { return modifiers_; }
    void setKeyEquivalentModifiers(ModifierFlags modifiers) { modifiers_ = modifiers; }

    /// Returns true if the item was created by `createSeparator`.
    bool isSeparator() const { return separator_; }

    /// The menu that the item opens, or null if the item performs an action instead.
    const std::shared_ptr<Menu>& submenu() const { return submenu_; }
    void setSubmenu(const std::shared_ptr<Menu>& submenu) { submenu_ = submenu; }

    /// The URL that the item represents.
    const std::optional<URL>& representedURL() const { return representedURL_; }
    void setRepresentedURL(const std::optional<URL>& url) { representedURL_ = url; }

protected:
    MenuItem() = default;

private:
    std::string title_;
    std::optional<Action> action_;
    std::string keyEquivalent_;
    ModifierFlags modifiers_ = ModifierFlags::command;
    bool separator_ = false;
    std::shared_ptr<Menu> submenu_;
    std::optional<URL> representedURL_;
};

/// Supplies the items of a menu whose contents change. Main thread only.
class MenuDelegate {
public:
    virtual ~MenuDelegate() = default;

    /// Called when the menu is about to be shown or its key equivalents are about to be looked up.
    virtual void menuNeedsUpdate(Menu& menu) = 0;
};

/// An ordered list of items, without native state. Use menus and their items only on the main thread.
class Menu {
public:
    /// Creates an empty menu. A menu in the menu bar should have the same title as the item that opens it.
    static std::shared_ptr<Menu> create(const std::string& title = "");
    /// Creates the standard "Edit" menu: Undo, Redo, Cut, Copy, Paste and Select All. Without it, text fields
    /// and pages on macOS have no key equivalents for these actions.
    static std::shared_ptr<Menu> createEditMenu();

    /// The title and the items, in the order in which they were added.
    const std::string& title() const { return title_; }
    const std::vector<std::shared_ptr<MenuItem>>& items() const { return items_; }
    void addItem(const std::shared_ptr<MenuItem>& item) { items_.push_back(item); }
    void removeAllItems() { items_.clear(); }

    /// The delegate, which is held weakly.
    std::shared_ptr<MenuDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const std::weak_ptr<MenuDelegate>& delegate) { delegate_ = delegate; }

protected:
    Menu() = default;

private:
    std::string title_;
    std::vector<std::shared_ptr<MenuItem>> items_;
    std::weak_ptr<MenuDelegate> delegate_;
};

} // namespace Platform
