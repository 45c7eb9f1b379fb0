#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::runUntil;

namespace {

class MenuValidationTest : public BrowserTest {
protected:
    static std::string titleAfterValidation(Controller& tab) {
        const auto item = MenuItem::create("?", BrowserAction::toggleBookmark);
        tab.validateMenuItem(*item);
        return item->title();
    }
};

} // namespace

TEST_F(MenuValidationTest, backAndForwardFollowTheHistory) {
    const auto tab = openTab();
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::goBack));
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::goForward));
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    EXPECT_TRUE(isEnabled(*tab, BrowserAction::goBack));
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::goForward));
    tab->goBack();
    ASSERT_TRUE(waitForTitle(tab, "/one"));
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::goBack));
    EXPECT_TRUE(isEnabled(*tab, BrowserAction::goForward));
}

TEST_F(MenuValidationTest, stopIsEnabledWhileThePageLoads) {
    server.route("/held", heldResponse());
    const auto tab = openTab();
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::stopLoading));
    tab->load(serverURL("/held"));
    EXPECT_TRUE(isEnabled(*tab, BrowserAction::stopLoading));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    server.release("/held");
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::stopLoading));
}

TEST_F(MenuValidationTest, theBookmarkItemSaysWhatItWillDo) {
    const auto tab = openTab();
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::toggleBookmark));
    EXPECT_EQ(titleAfterValidation(*tab), "Add Bookmark");
    ASSERT_TRUE(loadPage(tab, "/page"));
    EXPECT_TRUE(isEnabled(*tab, BrowserAction::toggleBookmark));
    EXPECT_EQ(titleAfterValidation(*tab), "Add Bookmark");
    tab->toggleBookmark();
    EXPECT_TRUE(isEnabled(*tab, BrowserAction::toggleBookmark));
    EXPECT_EQ(titleAfterValidation(*tab), "Remove Bookmark");
    tab->toggleBookmark();
    EXPECT_EQ(titleAfterValidation(*tab), "Add Bookmark");
}

TEST_F(MenuValidationTest, everythingElseIsAlwaysEnabled) {
    const auto tab = openTab();
    for (const Action action :
         {BrowserAction::focusAddressBar, BrowserAction::navigateFromAddressField,
          BrowserAction::searchFromSearchField, BrowserAction::reload, BrowserAction::openBookmark,
          StandardAction::newWindowForTab, BrowserAction::newTab}) {
        EXPECT_TRUE(isEnabled(*tab, action)) << action.name();
    }
    const auto item = MenuItem::create("Kept", BrowserAction::openBookmark);
    EXPECT_TRUE(tab->validateMenuItem(*item));
    EXPECT_EQ(item->title(), "Kept");
}

TEST_F(MenuValidationTest, theControllerRespondsToItsOwnActionsOnly) {
    const auto tab = openTab();
    for (const Action action :
         {BrowserAction::focusAddressBar, BrowserAction::navigateFromAddressField,
          BrowserAction::searchFromSearchField, BrowserAction::goBack, BrowserAction::goForward,
          BrowserAction::stopLoading, BrowserAction::reload, BrowserAction::toggleBookmark,
          BrowserAction::openBookmark, StandardAction::newWindowForTab}) {
        EXPECT_TRUE(tab->respondsTo(action)) << action.name();
    }
    for (const Action action :
         {BrowserAction::newTab, StandardAction::terminate, StandardAction::performClose,
          StandardAction::selectNextTab, StandardAction::copy}) {
        EXPECT_FALSE(tab->respondsTo(action)) << action.name();
    }
}
