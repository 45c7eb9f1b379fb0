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

/// Fixture that opens tabs in the same way as the application. Each test has its own bookmark store and web
/// server.
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

    /// Opens a tab next to `beside`, or in a new window if `beside` is null, and shows it. The tab stays in
    /// `tabs` until its window closes. New tabs that it requests open next to it.
    Tab openTab(const Tab& beside = nullptr, const Configuration& configuration = nullptr);

    /// Replaces `store` with a store that contains `bookmarks`. Must be called before the first tab is
    /// opened.
    void setBookmarks(const std::vector<KeyloftBrowserKit::Bookmark>& bookmarks);

    /// A response that the server does not send until `HTTPServer::release` is called.
    static TestSupport::HTTPResponse heldResponse();
    /// A page that is shown but never finishes loading.
    static TestSupport::HTTPResponse unfinishedPage(const std::string& title);

    static Platform::URL url(const std::string& text);
    Platform::URL serverURL(const std::string& path) const;

    /// Loads a page with the title `path` from the server and waits until it is loaded.
    [[nodiscard]] bool loadPage(const Tab& tab, const std::string& path);
    /// Loads `path` from the server and waits until the load finishes or fails.
    [[nodiscard]] bool loadPath(const Tab& tab, const std::string& path);
    /// Waits until the page is loaded and has the title `title`.
    [[nodiscard]] static bool waitForTitle(const Tab& tab, const std::string& title);
    [[nodiscard]] static bool waitForSheet(const Tab& tab);

    /// Performs the action with a menu item as the sender.
    static void performFromMenu(Controller& tab, Platform::Action action);
    /// Returns true if the tab validates a menu item with the action.
    static bool isEnabled(Controller& tab, Platform::Action action);

    /// The buttons in the bookmarks bar, excluding the spacer.
    static std::vector<std::shared_ptr<Platform::Button>> bookmarkButtons(const Controller& tab);

    TestSupport::HTTPServer server;
    TestSupport::TemporaryDirectory directory;
    std::shared_ptr<KeyloftBrowserKit::BookmarkStore> store;
    /// Strong references to the open tabs, in the order in which they were opened.
    std::vector<Tab> tabs;
};
