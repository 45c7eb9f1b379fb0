#include "Platform/AppKit/Application.h"
#include "Tests/Keyloft/AppDelegateTest.h"

#include <functional>

using namespace Platform;
using KeyloftBrowserKit::Bookmark;
using TestSupport::hasFocus;
using TestSupport::pressKey;
using TestSupport::runUntil;

namespace {

class MainMenuTest : public AppDelegateTest {
protected:
    struct Item {
        const char* title;
        const char* key;
        std::optional<Action> action;
        ModifierFlags modifiers = ModifierFlags::command;
        bool isSeparator = false;
    };
    static constexpr Item separator{"", "", std::nullopt, ModifierFlags::command, true};

    struct Submenu {
        const char* itemTitle;
        const char* title;
        std::vector<Item> items;
    };

    static void expectItem(const MenuItem& item, const Item& expected) {
        EXPECT_EQ(item.isSeparator(), expected.isSeparator);
        EXPECT_EQ(item.submenu(), nullptr);
        if (expected.isSeparator) {
            return;
        }
        EXPECT_EQ(item.title(), expected.title);
        EXPECT_EQ(item.keyEquivalent(), expected.key);
        EXPECT_EQ(item.action(), expected.action);
        EXPECT_EQ(item.keyEquivalentModifiers(), expected.modifiers);
    }

    static void expectMenu(const Menu& menu, const std::vector<Item>& expected) {
        ASSERT_EQ(menu.items().size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            SCOPED_TRACE(std::to_string(i) + ' ' + expected[i].title);
            expectItem(*menu.items()[i], expected[i]);
        }
    }
};

} // namespace

TEST_F(MainMenuTest, hasTheseMenusAndItems) {
    const std::vector<Submenu> expected = {
        {"Keyloft",
         "",
         {{"About Keyloft", "", StandardAction::orderFrontStandardAboutPanel},
          separator,
          {"Hide Keyloft", "h", StandardAction::hide},
          {"Hide Others", "h", StandardAction::hideOtherApplications, ModifierFlags::optionCommand},
          {"Show All", "", StandardAction::unhideAllApplications},
          separator,
          {"Quit Keyloft", "q", StandardAction::terminate}}},
        {"File",
         "File",
         {{"New Tab", "t", BrowserAction::newTab},
          {"Open Location\u2026", "l", BrowserAction::focusAddressBar},
          separator,
          {"Close Tab", "w", StandardAction::performClose}}},
        {"Edit",
         "Edit",
         {{"Undo", "z", StandardAction::undo},
          {"Redo", "Z", StandardAction::redo},
          separator,
          {"Cut", "x", StandardAction::cut},
          {"Copy", "c", StandardAction::copy},
          {"Paste", "v", StandardAction::paste},
          {"Select All", "a", StandardAction::selectAll}}},
        {"View",
         "View",
         {{"Reload Page", "r", BrowserAction::reload}, {"Stop", ".", BrowserAction::stopLoading}}},
        {"History",
         "History",
         {{"Back", "[", BrowserAction::goBack}, {"Forward", "]", BrowserAction::goForward}}},
        {"Bookmarks", "Bookmarks", {}},
        {"Window",
         "Window",
         {{"Minimize", "m", StandardAction::performMiniaturize},
          {"Zoom", "", StandardAction::performZoom},
          separator,
          {"Show Previous Tab", "{", StandardAction::selectPreviousTab},
          {"Show Next Tab", "}", StandardAction::selectNextTab},
          separator,
          {"Bring All to Front", "", StandardAction::arrangeInFront}}},
    };
    const auto menu = Keyloft::AppDelegate::create()->buildMainMenu();
    ASSERT_EQ(menu->items().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].itemTitle);
        const MenuItem& top = *menu->items()[i];
        EXPECT_EQ(top.title(), expected[i].itemTitle);
        EXPECT_EQ(top.keyEquivalent(), "");
        EXPECT_EQ(top.action(), std::nullopt);
        EXPECT_FALSE(top.isSeparator());
        ASSERT_NE(top.submenu(), nullptr);
        EXPECT_EQ(top.submenu()->title(), expected[i].title);
        expectMenu(*top.submenu(), expected[i].items);
    }
}

TEST_F(MainMenuTest, itsBookmarksMenuIsTheDelegates) {
    const auto menu = delegate->buildMainMenu();
    EXPECT_EQ(menu->items().at(5)->submenu(), delegate->bookmarksMenu());
    EXPECT_EQ(delegate->bookmarksMenu()->delegate(), std::shared_ptr<MenuDelegate>(delegate));
    EXPECT_EQ(delegate->bookmarksMenu()->title(), "Bookmarks");
    const auto again = delegate->buildMainMenu();
    EXPECT_NE(again, menu);
    EXPECT_EQ(again->items().at(5)->submenu(), delegate->bookmarksMenu());
}

TEST_F(MainMenuTest, theBookmarksMenuIsMadeAnewForEachOpening) {
    auto& menu = *delegate->bookmarksMenu();
    const std::vector<Item> head = {{"Add Bookmark", "d", BrowserAction::toggleBookmark}, separator};
    delegate->menuNeedsUpdate(menu);
    expectMenu(menu, head);

    delegate->bookmarks()->add({"One", url("https://one.test/")});
    delegate->bookmarks()->add({"Two", url("https://two.test/")});
    delegate->menuNeedsUpdate(menu);
    auto expected = head;
    expected.insert(expected.end(),
                    {{"One", "", BrowserAction::openBookmark}, {"Two", "", BrowserAction::openBookmark}});
    expectMenu(menu, expected);
    EXPECT_EQ(menu.items()[0]->representedURL(), std::nullopt);
    EXPECT_EQ(menu.items()[2]->representedURL(), url("https://one.test/"));
    EXPECT_EQ(menu.items()[3]->representedURL(), url("https://two.test/"));

    delegate->bookmarks()->remove(url("https://one.test/"));
    delegate->menuNeedsUpdate(menu);
    expected.erase(expected.begin() + 2);
    expectMenu(menu, expected);
}

TEST_F(MainMenuTest, theBookmarksMenuHasNoLimit) {
    std::vector<Bookmark> bookmarks;
    for (int i = 0; i < 1000; ++i) {
        bookmarks.push_back({"Page " + std::to_string(i), url("https://page.test/" + std::to_string(i))});
    }
    TestSupport::writeContents(Keyloft::AppDelegate::bookmarksFile().filePath(), Bookmark::encode(bookmarks));
    const auto other = Keyloft::AppDelegate::create();
    const auto menu = Menu::create();
    other->menuNeedsUpdate(*menu);
    ASSERT_EQ(menu->items().size(), 1002U);
    for (std::size_t i = 0; i < bookmarks.size(); ++i) {
        EXPECT_EQ(menu->items()[i + 2]->title(), bookmarks[i].title);
        EXPECT_EQ(menu->items()[i + 2]->representedURL(), bookmarks[i].url);
    }
}

TEST_F(MainMenuTest, theWindowMenuEndsWithTheOpenTabs) {
    const auto first = launch();
    openPage("/beside", first);
    const auto elsewhere = openPage("/elsewhere");
    auto titles = TestSupport::openedMenu(*elsewhere->window(), "Window").titles;
    ASSERT_EQ(titles.size(), 8U);
    EXPECT_EQ(std::vector(titles.begin() + 5, titles.end()),
              (std::vector<std::string>{"New Tab", "/beside", "/elsewhere"}));
}

TEST_F(MainMenuTest, everyActionReachesSomebodyWhileATabIsOpen) {
    launch();
    delegate->menuNeedsUpdate(*delegate->bookmarksMenu());
    const auto menu = delegate->buildMainMenu();
    for (const auto& top : menu->items()) {
        for (const auto& item : top->submenu()->items()) {
            const auto action = item->action();
            EXPECT_TRUE(item->isSeparator() || (action && targetForAction(*action))) << item->title();
        }
    }
}

TEST_F(MainMenuTest, withoutATabNewTabAndTheApplicationsOwnActionsRemain) {
    for (const Action action :
         {BrowserAction::newTab, StandardAction::terminate, StandardAction::orderFrontStandardAboutPanel}) {
        EXPECT_NE(targetForAction(action), nullptr);
    }
    for (const Action action : {BrowserAction::reload, StandardAction::performClose, StandardAction::copy,
                                BrowserAction::toggleBookmark}) {
        EXPECT_EQ(targetForAction(action), nullptr);
    }
}

TEST_F(MainMenuTest, itsKeysDoWhatItsItemsSayWhereverTheFocusIs) {
    const auto page = [](const Tab& tab) -> std::shared_ptr<View> { return tab->webView(); };
    const auto address = [](const Tab& tab) -> std::shared_ptr<View> { return tab->addressField(); };
    const auto search = [](const Tab& tab) -> std::shared_ptr<View> { return tab->searchField(); };
    auto first = launch();
    TestSupport::activate(*first->window());
    for (const std::function<std::shared_ptr<View>(const Tab&)>& place :
         {std::function(page), std::function(address), std::function(search)}) {
        const auto press = [&](const Tab& tab, const std::string& key) {
            tab->window()->makeFirstResponder(place(tab));
            ASSERT_TRUE(runUntil([&] { return hasFocus(*place(tab)); })) << key;
            pressKey(key);
        };
        ASSERT_TRUE(loadPage(first, "/page"));
        const auto visits = server.count("/page");
        press(first, "ctrl+d");
        EXPECT_TRUE(runUntil([&] { return first->isBookmarked(); }));
        press(first, "ctrl+d");
        EXPECT_TRUE(runUntil([&] { return !first->isBookmarked(); }));
        press(first, "ctrl+l");
        ASSERT_TRUE(runUntil([&] { return hasFocus(*first->addressField()); }));
        EXPECT_TRUE(runUntil(
            [&] { return TestSupport::selectedText(*first->addressField()) == server.url("/page"); }));
        press(first, "ctrl+r");
        EXPECT_TRUE(
            runUntil([&] { return server.count("/page") > visits && !first->webView()->isLoading(); }));
        ASSERT_TRUE(loadPage(first, "/other"));
        press(first, "ctrl+bracketleft");
        EXPECT_TRUE(waitForTitle(first, "/page"));
        press(first, "ctrl+bracketright");
        EXPECT_TRUE(waitForTitle(first, "/other"));

        press(first, "ctrl+t");
        ASSERT_TRUE(runUntil([&] { return controllers().size() == 2; }));
        const auto second = controllers()[1];
        EXPECT_TRUE(runUntil([&] { return hasFocus(*second->addressField()); }));
        press(second, "ctrl+shift+bracketleft");
        EXPECT_TRUE(runUntil([&] { return TestSupport::isSelectedTab(*first->window()); }));
        press(first, "ctrl+shift+bracketright");
        EXPECT_TRUE(runUntil([&] { return TestSupport::isSelectedTab(*second->window()); }));
        press(second, "ctrl+w");
        EXPECT_TRUE(runUntil([&] { return controllers() == std::vector<Tab>{first}; }));

        for (const char* key : {"ctrl+m", "ctrl+h"}) {
            press(first, key);
            EXPECT_TRUE(runUntil([&] { return !TestSupport::isActive(*first->window()); })) << key;
            TestSupport::activate(*first->window());
        }
        // The key equivalents of disabled items have no effect and do not insert characters into the address
        // field.
        const auto text = first->addressField()->stringValue();
        press(first, "ctrl+alt+h");
        press(first, "ctrl+period");
        press(first, "ctrl+l");
        ASSERT_TRUE(runUntil([&] { return hasFocus(*first->addressField()); }));
        EXPECT_EQ(first->addressField()->stringValue(), text);
        EXPECT_TRUE(TestSupport::isActive(*first->window()));
    }
}

TEST_F(MainMenuTest, theStopKeyStopsAndTheReloadKeyReloadsWhileThePageLoads) {
    server.route("/endless", unfinishedPage("endless"));
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    tab->load(serverURL("/endless"));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    pressKey("ctrl+r");
    ASSERT_TRUE(runUntil([&] { return server.count("/endless") == 2; }));
    EXPECT_TRUE(tab->webView()->isLoading());
    pressKey("ctrl+period");
    EXPECT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_EQ(server.count("/endless"), 2U);
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
}
