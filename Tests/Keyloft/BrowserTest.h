#pragma once

#include "Keyloft/BrowserAction.h"
#include "Keyloft/BrowserWindowController.h"
#include "KeyloftBrowserKit/BookmarkStore.h"
#include "Platform/AppKit/Menu.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace BrowserAction = Keyloft::BrowserAction;

/// Tabs as the application opens them, a bookmark store of the test's own, and a web server for the pages.
class BrowserTest : public testing::Test {
public:
    BrowserTest(const BrowserTest&) = delete;
    BrowserTest& operator=(const BrowserTest&) = delete;
    ~BrowserTest() override;

protected:
    using Controller = Keyloft::BrowserWindowController;
    using Tab = std::shared_ptr<Controller>;
    using Configuration = std::shared_ptr<Platform::WebViewConfiguration>;

    BrowserTest();

    /// Opens a tab in the window of another, or in a window of its own, and shows it. It goes from `tabs`
    /// when its window closes, and opens further ones beside it.
    Tab openTab(const Tab& beside = nullptr, const Configuration& configuration = nullptr);

    /// Begins anew with these bookmarks; for before the first tab.
    void setBookmarks(const std::vector<KeyloftBrowserKit::Bookmark>& bookmarks);

    /// An answer that comes once it is released.
    static TestSupport::HTTPResponse heldResponse();
    /// A page that has begun to show and never comes to its end.
    static TestSupport::HTTPResponse unfinishedPage(const std::string& title);

    static Platform::URL url(const std::string& text);
    Platform::URL serverURL(const std::string& path) const;

    /// Loads a page of the server with the given title and waits for it.
    [[nodiscard]] bool loadPage(const Tab& tab, const std::string& path);
    /// Loads what the server has under the path and waits until all of it is there.
    [[nodiscard]] bool loadPath(const Tab& tab, const std::string& path);
    /// Waits until the page has the title and is there in whole.
    [[nodiscard]] static bool waitForTitle(const Tab& tab, const std::string& title);
    [[nodiscard]] static bool waitForSheet(const Tab& tab);

    /// Performs the action as the menu item of that action does.
    static void performFromMenu(Controller& tab, Platform::Action action);
    /// Whether a menu item of the action is enabled.
    static bool isEnabled(Controller& tab, Platform::Action action);

    /// The buttons of the bookmarks bar, its spacer left out.
    static std::vector<std::shared_ptr<Platform::Button>> bookmarkButtons(const Controller& tab);

    TestSupport::HTTPServer server;
    TestSupport::TemporaryDirectory directory;
    std::shared_ptr<KeyloftBrowserKit::BookmarkStore> store;
    /// What keeps the tabs alive, in the order of opening.
    std::vector<Tab> tabs;
};
