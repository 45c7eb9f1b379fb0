#include "Tests/Keyloft/AppDelegateTest.h"
#include "Tests/Support/AccessibilityTree.h"

#include <algorithm>

using TestSupport::AccessibleObject;
using TestSupport::accessibleObjects;
using TestSupport::hasFocus;
using TestSupport::pressKey;
using TestSupport::runUntil;

namespace {

/// Tests the names and roles that assistive technologies read, and that the windows can be operated with the
/// keyboard alone.
class AccessibilityTest : public AppDelegateTest {
protected:
    /// Succeeds if exactly one accessible object is named `name` and that object has the role `role`.
    static testing::AssertionResult isNamed(const std::string& name, const std::string& role) {
        const auto named = accessibleObjects(name);
        const bool isSo = named.size() == 1 && named[0].role == role;
        return (isSo ? testing::AssertionSuccess() : testing::AssertionFailure())
               << named.size() << " named " << name << (named.empty() ? "" : ", a " + named[0].role);
    }

    /// The names of the tabs in the tab strip. The name of a selected tab is in brackets.
    static std::vector<std::string> tabs() {
        std::vector<std::string> names;
        for (const auto& object : accessibleObjects()) {
            if (object.role == "tab") {
                names.push_back(object.isSelected ? "[" + object.name + "]" : object.name);
            }
        }
        return names;
    }

    Tab launchActive() {
        const auto tab = launch();
        TestSupport::activate(*tab->window());
        return tab;
    }
};

} // namespace

TEST_F(AccessibilityTest, everyControlHasItsName) {
    delegate->bookmarks()->add({"Kept", url("https://kept.test/")});
    const auto tab = launch();
    for (const char* name : {"Back", "Forward", "Reload", "Bookmark this page"}) {
        EXPECT_TRUE(isNamed(name, "button"));
    }
    EXPECT_TRUE(isNamed("Address", "text box"));
    EXPECT_TRUE(isNamed("Search DuckDuckGo", "search box"));
    EXPECT_TRUE(isNamed("Bookmarks bar", "group"));
    EXPECT_FALSE(accessibleObjects("Back").at(0).isEnabled);
    EXPECT_TRUE(accessibleObjects("Reload").at(0).isEnabled);
    EXPECT_TRUE(accessibleObjects("Address").at(0).isFocusable);
}

TEST_F(AccessibilityTest, theReloadButtonIsCalledStopWhileThePageLoads) {
    server.route("/held", heldResponse());
    const auto tab = launch();
    tab->load(serverURL("/held"));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    EXPECT_TRUE(isNamed("Stop", "button"));
    EXPECT_TRUE(accessibleObjects("Reload").empty());
    EXPECT_EQ(tab->reloadButton()->toolTip(), "Reload");
    server.release("/held");
    ASSERT_TRUE(waitForTitle(tab, "held"));
    EXPECT_TRUE(isNamed("Reload", "button"));
    EXPECT_TRUE(accessibleObjects("Stop").empty());
}

TEST_F(AccessibilityTest, theBookmarkButtonSaysWhatItWillDo) {
    const auto tab = launch();
    ASSERT_TRUE(loadPage(tab, "/page"));
    tab->toggleBookmark();
    EXPECT_TRUE(isNamed("Remove bookmark", "button"));
    EXPECT_TRUE(accessibleObjects("Bookmark this page").empty());
    EXPECT_EQ(tab->bookmarkButton()->toolTip(), "Bookmark this page");
    tab->toggleBookmark();
    EXPECT_TRUE(isNamed("Bookmark this page", "button"));
}

TEST_F(AccessibilityTest, theTabStripsButtonsHaveNames) {
    const auto first = launch();
    openPage("/second", first);
    const auto named = accessibleObjects("New Tab");
    EXPECT_EQ(std::ranges::count(named, "button", &AccessibleObject::role), 1);
    const auto closing = accessibleObjects("Close Tab");
    EXPECT_EQ(std::ranges::count(closing, "button", &AccessibleObject::role), 2);
}

TEST_F(AccessibilityTest, tabsHaveTheNamesOfTheirPagesAndOneIsSelected) {
    using Names = std::vector<std::string>;
    const auto first = launch();
    EXPECT_TRUE(isNamed("Tabs", "tab list"));
    const auto second = openPage("/second", first);
    EXPECT_EQ(tabs(), (Names{"New Tab", "[/second]"}));
    first->window()->makeKeyAndOrderFront();
    first->window()->setTitle("Renamed");
    EXPECT_EQ(tabs(), (Names{"[Renamed]", "/second"}));
    second->window()->close();
    EXPECT_TRUE(runUntil([] { return tabs() == Names{"[Renamed]"}; }));
}

TEST_F(AccessibilityTest, nothingThatTakesTheFocusHasTheNameOrTheRoleOfAWidget) {
    delegate->bookmarks()->add({"Kept", url("https://kept.test/")});
    const auto first = launch();
    EXPECT_TRUE(isNamed("Menu bar", "menu bar"));
    EXPECT_TRUE(isNamed("Web page", "document"));
    openPage("/second", first);
    for (const auto& object : accessibleObjects()) {
        // GTK reports scrolling containers, which have the role "group", as focusable, although they pass the
        // focus on to their contents.
        if (object.isFocusable && object.role != "group") {
            EXPECT_NE(object.role, "widget") << object.name;
            for (const char* prefix : {"Gtk", "Adw"}) {
                EXPECT_FALSE(object.name.empty() || object.name.starts_with(prefix))
                    << object.role << " " << object.name;
            }
        }
    }
}

TEST_F(AccessibilityTest, theProgressIsThereWhileAPageLoads) {
    server.route("/held", heldResponse());
    const auto tab = launch();
    EXPECT_TRUE(accessibleObjects("Loading").empty());
    tab->load(serverURL("/held"));
    EXPECT_TRUE(isNamed("Loading", "progress bar"));
    server.release("/held");
    ASSERT_TRUE(waitForTitle(tab, "held"));
    EXPECT_TRUE(accessibleObjects("Loading").empty());
}

TEST_F(AccessibilityTest, aSheetIsAnAlertWithItsTextAndButtons) {
    const auto tab = launchActive();
    ASSERT_TRUE(loadPage(tab, "/page"));
    TestSupport::runScript(*tab->webView(), "confirm('Sure?')");
    ASSERT_TRUE(waitForSheet(tab));
    const auto heading = accessibleObjects("127.0.0.1");
    EXPECT_EQ(std::ranges::count(heading, "alert dialog", &AccessibleObject::role), 1);
    EXPECT_TRUE(isNamed("Sure?", "label"));
    for (const char* name : {"OK", "Cancel"}) {
        EXPECT_EQ(std::ranges::count(accessibleObjects(name), "button", &AccessibleObject::role), 1) << name;
    }
    TestSupport::pressSheetButton(*tab->window(), "Cancel");
}

TEST_F(AccessibilityTest, tabAndShiftTabReachEveryControl) {
    delegate->bookmarks()->add({"One", url("https://one.test/")});
    delegate->bookmarks()->add({"Two", url("https://two.test/")});
    const auto tab = launchActive();
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    tab->goBack();
    ASSERT_TRUE(waitForTitle(tab, "/one"));
    const auto bookmarks = bookmarkButtons(*tab);
    const std::vector<std::shared_ptr<Platform::View>> order = {
        tab->forwardButton(), tab->reloadButton(), tab->addressField(), tab->bookmarkButton(),
        tab->searchField(),   bookmarks.at(0),     bookmarks.at(1),     tab->webView()};
    tab->window()->makeFirstResponder(order.front());
    ASSERT_TRUE(runUntil([&] { return hasFocus(*order.front()); }));
    for (std::size_t i = 1; i < order.size(); ++i) {
        pressKey("Tab");
        ASSERT_TRUE(runUntil([&] { return hasFocus(*order[i]); })) << i;
    }
    // The page has the focus but contains no focusable elements, so the first Shift+Tab moves the focus out
    // of the page.
    for (std::size_t i = order.size() - 1; i-- > 0;) {
        pressKey("shift+Tab");
        ASSERT_TRUE(runUntil([&] { return hasFocus(*order[i]); })) << i;
    }
}

TEST_F(AccessibilityTest, spaceAndReturnPressAButton) {
    server.route("/kept", TestSupport::HTTPResponse::page("kept"));
    delegate->bookmarks()->add({"Kept", serverURL("/kept")});
    const auto tab = launchActive();
    ASSERT_TRUE(loadPage(tab, "/page"));
    tab->window()->makeFirstResponder(tab->reloadButton());
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->reloadButton()); }));
    pressKey("space");
    ASSERT_TRUE(runUntil([&] { return server.count("/page") == 2 && !tab->webView()->isLoading(); }));
    tab->window()->makeFirstResponder(bookmarkButtons(*tab).at(0));
    pressKey("Return");
    EXPECT_TRUE(waitForTitle(tab, "kept"));
}

TEST_F(AccessibilityTest, theMenuBarIsUsedByKeysAlone) {
    const auto tab = launchActive();
    // The first item of the second menu is "New Tab".
    pressKey("F10");
    pressKey("Right");
    pressKey("Return");
    ASSERT_TRUE(runUntil([&] { return controllers().size() == 2; }));
    // The second item of the second menu is "Open Location".
    TestSupport::activate(*controllers()[1]->window());
    controllers()[1]->window()->makeFirstResponder(controllers()[1]->searchField());
    pressKey("F10");
    pressKey("Right");
    pressKey("Down");
    pressKey("Return");
    EXPECT_TRUE(runUntil([&] { return hasFocus(*controllers()[1]->addressField()); }));
}
