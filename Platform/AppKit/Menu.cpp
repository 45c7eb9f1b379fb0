#include "Platform/AppKit/Menu.h"

#include "Platform/Foundation/MakeShared.h"

namespace Platform {

std::shared_ptr<MenuItem> MenuItem::create(const std::string& title, std::optional<Action> action,
                                           const std::string& keyEquivalent) {
    auto item = makeShared<MenuItem>();
    item->title_ = title;
    item->action_ = action;
    item->keyEquivalent_ = keyEquivalent;
    return item;
}

std::shared_ptr<MenuItem> MenuItem::createSeparator() {
    auto item = create("", std::nullopt);
    item->separator_ = true;
    return item;
}

std::shared_ptr<Menu> Menu::create(const std::string& title) {
    auto menu = makeShared<Menu>();
    menu->title_ = title;
    return menu;
}

std::shared_ptr<Menu> Menu::createEditMenu() {
    auto menu = create("Edit");
    menu->addItem(MenuItem::create("Undo", StandardAction::undo, "z"));
    menu->addItem(MenuItem::create("Redo", StandardAction::redo, "Z"));
    menu->addItem(MenuItem::createSeparator());
    menu->addItem(MenuItem::create("Cut", StandardAction::cut, "x"));
    menu->addItem(MenuItem::create("Copy", StandardAction::copy, "c"));
    menu->addItem(MenuItem::create("Paste", StandardAction::paste, "v"));
    menu->addItem(MenuItem::create("Select All", StandardAction::selectAll, "a"));
    return menu;
}

} // namespace Platform
