#include "Tests/Keyloft/BrowserTest.h"

#include "Keyloft/Program.h"
#include "Platform/AppKit/Application.h"

#include <optional>

using namespace Platform;
using KeyloftBrowserKit::Bookmark;
using KeyloftBrowserKit::BookmarkStore;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

BrowserTest::BrowserTest() {
    setProgramInfo(Keyloft::program());
    Application::shared().prepare();
    TestSupport::forgetWindowFrames();
    setBookmarks({});
}

BrowserTest::~BrowserTest() {
    const auto left = tabs;
    for (const auto& tab : left) {
        tab->window()->close();
    }
    TestSupport::runPending();
}

void BrowserTest::setBookmarks(const std::vector<Bookmark>& bookmarks) {
    const std::string file = directory / "bookmarks.json";
    TestSupport::writeContents(file, Bookmark::encode(bookmarks));
    store = std::make_shared<BookmarkStore>(URL::fromFilePath(file, false));
}

BrowserTest::Tab BrowserTest::openTab(const Tab& beside, const Configuration& configuration) {
    const Tab tab = Controller::create(store, configuration);
    const std::weak_ptr<Controller> weak = tab;
    tab->onClose = [this, weak] { std::erase(tabs, weak.lock()); };
    tab->onNewTab = [this, weak](const std::optional<URL>& /*url*/, const Configuration& given) {
        return openTab(weak.lock(), given);
    };
    tabs.push_back(tab);
    if (beside) {
        beside->window()->addTabbedWindow(tab->window());
    }
    tab->showWindow();
    tab->window()->makeKeyAndOrderFront();
    TestSupport::waitForLayout(*tab->window());
    return tab;
}

HTTPResponse BrowserTest::heldResponse() {
    return HTTPResponse::page("held").withEnding(HTTPResponse::Ending::held);
}

HTTPResponse BrowserTest::unfinishedPage(const std::string& title) {
    auto response = HTTPResponse::page(title);
    // Pad the body, so that WebKitGTK starts to show the page before the response is complete.
    response.body += std::string(4096, ' ');
    response.ending = HTTPResponse::Ending::unfinished;
    return response;
}

URL BrowserTest::url(const std::string& text) { return TestSupport::present(URL::fromString(text)); }

URL BrowserTest::serverURL(const std::string& path) const { return url(server.url(path)); }

bool BrowserTest::loadPage(const Tab& tab, const std::string& path) {
    server.route(path, HTTPResponse::page(path));
    tab->load(serverURL(path));
    return waitForTitle(tab, path);
}

bool BrowserTest::loadPath(const Tab& tab, const std::string& path) {
    tab->load(serverURL(path));
    return runUntil([&] { return server.count(path) > 0 && !tab->webView()->isLoading(); });
}

bool BrowserTest::waitForTitle(const Tab& tab, const std::string& title) {
    return runUntil([&] { return tab->webView()->title() == title && !tab->webView()->isLoading(); });
}

bool BrowserTest::waitForSheet(const Tab& tab) {
    return runUntil([&] { return TestSupport::shownSheet(*tab->window()).has_value(); });
}

void BrowserTest::performFromMenu(Controller& tab, Action action) {
    const auto item = MenuItem::create("", action);
    tab.perform(action, {.menuItem = item.get()});
}

bool BrowserTest::isEnabled(Controller& tab, Action action) {
    const auto item = MenuItem::create("", action);
    return tab.validateMenuItem(*item);
}

std::vector<std::shared_ptr<Button>> BrowserTest::bookmarkButtons(const Controller& tab) {
    std::vector<std::shared_ptr<Button>> buttons;
    for (const auto& view : tab.bookmarksBar()->arrangedSubviews()) {
        if (auto button = std::dynamic_pointer_cast<Button>(view)) {
            buttons.push_back(std::move(button));
        }
    }
    return buttons;
}
