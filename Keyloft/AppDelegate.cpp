#include "Keyloft/AppDelegate.h"

#include "Platform/Foundation/FileManager.h"
#include "Platform/Foundation/MakeShared.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Keyloft {

namespace StandardAction = Platform::StandardAction;
using Platform::Action;
using Platform::Application;
using Platform::Menu;
using Platform::MenuItem;
using Platform::URL;
using Platform::Window;

namespace {

/// Adds `submenu` to the menu bar. Returns `submenu`, so that the caller can add items to it.
std::shared_ptr<Menu> addMenu(Menu& mainMenu, const std::string& title, std::shared_ptr<Menu> submenu) {
    const auto item = MenuItem::create(title, std::nullopt);
    item->setSubmenu(submenu);
    mainMenu.addItem(item);
    return submenu;
}

std::shared_ptr<Menu> addMenu(Menu& mainMenu, const std::string& title) {
    return addMenu(mainMenu, title, Menu::create(title));
}

void addItem(Menu& menu, const std::string& title, Action action, const std::string& keyEquivalent = "") {
    menu.addItem(MenuItem::create(title, action, keyEquivalent));
}

void addSeparator(Menu& menu) { menu.addItem(MenuItem::createSeparator()); }

} // namespace

AppDelegate::AppDelegate()
    : ApplicationDelegate("AppDelegate")
    , bookmarks_(std::make_shared<KeyloftBrowserKit::BookmarkStore>(bookmarksFile()))
    , bookmarksMenu_(Menu::create("Bookmarks")) {}

std::shared_ptr<AppDelegate> AppDelegate::create() { return Platform::makeShared<AppDelegate>(); }

URL AppDelegate::bookmarksFile() {
    return Platform::FileManager::defaultManager()
        .applicationSupportDirectory()
        .appendingPathComponent("Keyloft", true)
        .appendingPathComponent("bookmarks.json", false);
}

void AppDelegate::applicationWillFinishLaunching() { Application::shared().setMainMenu(buildMainMenu()); }

void AppDelegate::applicationDidFinishLaunching() {
    if (controllers_.empty()) {
        openTab(std::nullopt, nullptr, nullptr);
    }
    Application::shared().activateIgnoringOtherApps();
}

void AppDelegate::applicationOpenURLs(const std::vector<URL>& urls) {
    for (const URL& url : urls) {
        if (url.scheme() != "http" && url.scheme() != "https") {
            continue;
        }
        if (const auto tab = emptyTabInFront()) {
            tab->load(url);
        } else {
            openTab(url, frontBrowserWindow(), nullptr);
        }
    }
    Application::shared().activateIgnoringOtherApps();
}

bool AppDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
    if (!hasVisibleWindows) {
        openTab(std::nullopt, nullptr, nullptr);
    }
    return true;
}

void AppDelegate::perform(Action action, const Platform::ActionSender& /*sender*/) {
    if (action == BrowserAction::newTab) {
        openTab(std::nullopt, frontBrowserWindow(), nullptr);
    }
}

std::shared_ptr<BrowserWindowController>
AppDelegate::openTab(const std::optional<URL>& url, const std::shared_ptr<Window>& window,
                     const std::shared_ptr<Platform::WebViewConfiguration>& configuration) {
    const auto controller = BrowserWindowController::create(bookmarks_, configuration);
    const std::weak_ptr<AppDelegate> weakSelf = weak_from_this();
    const std::weak_ptr<BrowserWindowController> weakController = controller;
    controller->onClose = [weakSelf, weakController] {
        if (const auto self = weakSelf.lock()) {
            std::erase(self->controllers_, weakController.lock());
        }
    };
    controller->onNewTab =
        [weakSelf, weakController](const std::optional<URL>& newURL,
                                   const std::shared_ptr<Platform::WebViewConfiguration>& newConfiguration)
        -> std::shared_ptr<BrowserWindowController> {
        const auto self = weakSelf.lock();
        if (!self) {
            return nullptr;
        }
        const auto opener = weakController.lock();
        return self->openTab(newURL, opener ? opener->window() : nullptr, newConfiguration);
    };
    controllers_.push_back(controller);

    if (window) {
        window->addTabbedWindow(controller->window());
    }
    controller->showWindow();
    controller->window()->makeKeyAndOrderFront();
    if (url) {
        controller->load(*url);
    } else {
        controller->addressField()->selectText();
    }
    return controller;
}

std::shared_ptr<Window> AppDelegate::frontBrowserWindow() const {
    const auto mainWindow = Application::shared().mainWindow();
    const auto front = std::ranges::find_if(controllers_, [&](const auto& controller) {
        return mainWindow && controller->window() == mainWindow;
    });
    if (front != controllers_.end()) {
        return (*front)->window();
    }
    return controllers_.empty() ? nullptr : controllers_.back()->window();
}

std::shared_ptr<BrowserWindowController> AppDelegate::emptyTabInFront() const {
    const auto front = frontBrowserWindow();
    const auto tab = std::ranges::find_if(controllers_, [&](const auto& controller) {
        return controller->window() == front && controller->isEmptyTab();
    });
    return tab == controllers_.end() ? nullptr : *tab;
}

void AppDelegate::menuNeedsUpdate(Menu& menu) {
    menu.removeAllItems();
    addItem(menu, "Add Bookmark", BrowserAction::toggleBookmark, "d");
    addSeparator(menu);
    for (const auto& bookmark : bookmarks_->bookmarks()) {
        const auto item = MenuItem::create(bookmark.titleInOneLine(), BrowserAction::openBookmark);
        item->setRepresentedURL(bookmark.url);
        menu.addItem(item);
    }
}

std::shared_ptr<Menu> AppDelegate::buildMainMenu() {
    const auto mainMenu = Menu::create();

    const auto application = addMenu(*mainMenu, "Keyloft", Menu::create());
    addItem(*application, "About Keyloft", StandardAction::orderFrontStandardAboutPanel);
    addSeparator(*application);
    addItem(*application, "Hide Keyloft", StandardAction::hide, "h");
    const auto hideOthers = MenuItem::create("Hide Others", StandardAction::hideOtherApplications, "h");
    hideOthers->setKeyEquivalentModifiers(Platform::ModifierFlags::optionCommand);
    application->addItem(hideOthers);
    addItem(*application, "Show All", StandardAction::unhideAllApplications);
    addSeparator(*application);
    addItem(*application, "Quit Keyloft", StandardAction::terminate, "q");

    const auto file = addMenu(*mainMenu, "File");
    addItem(*file, "New Tab", BrowserAction::newTab, "t");
    addItem(*file, "Open Location…", BrowserAction::focusAddressBar, "l");
    addSeparator(*file);
    addItem(*file, "Close Tab", StandardAction::performClose, "w");

    addMenu(*mainMenu, "Edit", Menu::createEditMenu());

    const auto view = addMenu(*mainMenu, "View");
    addItem(*view, "Reload Page", BrowserAction::reload, "r");
    addItem(*view, "Stop", BrowserAction::stopLoading, ".");

    const auto history = addMenu(*mainMenu, "History");
    addItem(*history, "Back", BrowserAction::goBack, "[");
    addItem(*history, "Forward", BrowserAction::goForward, "]");

    addMenu(*mainMenu, "Bookmarks", bookmarksMenu_);
    bookmarksMenu_->setDelegate(weak_from_this());

    const auto window = addMenu(*mainMenu, "Window");
    addItem(*window, "Minimize", StandardAction::performMiniaturize, "m");
    addItem(*window, "Zoom", StandardAction::performZoom);
    addSeparator(*window);
    addItem(*window, "Show Previous Tab", StandardAction::selectPreviousTab, "{");
    addItem(*window, "Show Next Tab", StandardAction::selectNextTab, "}");
    addSeparator(*window);
    addItem(*window, "Bring All to Front", StandardAction::arrangeInFront);
    Application::shared().setWindowsMenu(window);

    return mainMenu;
}

} // namespace Keyloft
