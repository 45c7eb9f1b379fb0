#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::runUntil;

namespace {

class MenuValidationTest : public BrowserTest {
protected:
    static std::string titleAfterValidation(Controller& tab) {
        const auto item = MenuItem::create("?", Action::toggleBookmark);
        tab.validateMenuItem(*item);
        return item->title();
    }
};

} // namespace

TEST_F(MenuValidationTest, backAndForwardFollowTheHistory) {
    const auto tab = openTab();
    EXPECT_FALSE(isEnabled(*tab, Action::goBack));
    EXPECT_FALSE(isEnabled(*tab, Action::goForward));
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    EXPECT_TRUE(isEnabled(*tab, Action::goBack));
    EXPECT_FALSE(isEnabled(*tab, Action::goForward));
    tab->goBack();
    ASSERT_TRUE(waitForTitle(tab, "/one"));
    EXPECT_FALSE(isEnabled(*tab, Action::goBack));
    EXPECT_TRUE(isEnabled(*tab, Action::goForward));
}

TEST_F(MenuValidationTest, stopIsEnabledWhileThePageLoads) {
    server.route("/held", heldResponse());
    const auto tab = openTab();
    EXPECT_FALSE(isEnabled(*tab, Action::stopLoading));
    tab->load(serverURL("/held"));
    EXPECT_TRUE(isEnabled(*tab, Action::stopLoading));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    server.release("/held");
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_FALSE(isEnabled(*tab, Action::stopLoading));
}

TEST_F(MenuValidationTest, theBookmarkItemSaysWhatItWillDo) {
    const auto tab = openTab();
    EXPECT_FALSE(isEnabled(*tab, Action::toggleBookmark));
    EXPECT_EQ(titleAfterValidation(*tab), "Add Bookmark");
    ASSERT_TRUE(loadPage(tab, "/page"));
    EXPECT_TRUE(isEnabled(*tab, Action::toggleBookmark));
    EXPECT_EQ(titleAfterValidation(*tab), "Add Bookmark");
    tab->toggleBookmark();
    EXPECT_TRUE(isEnabled(*tab, Action::toggleBookmark));
    EXPECT_EQ(titleAfterValidation(*tab), "Remove Bookmark");
    tab->toggleBookmark();
    EXPECT_EQ(titleAfterValidation(*tab), "Add Bookmark");
}

TEST_F(MenuValidationTest, everythingElseIsAlwaysEnabled) {
    const auto tab = openTab();
    for (const Action action :
         {Action::focusAddressBar, Action::navigateFromAddressField, Action::searchFromSearchField,
          Action::reload, Action::openBookmark, Action::newWindowForTab, Action::newTab}) {
        EXPECT_TRUE(isEnabled(*tab, action)) << static_cast<int>(action);
    }
    const auto item = MenuItem::create("Kept", Action::openBookmark);
    EXPECT_TRUE(tab->validateMenuItem(*item));
    EXPECT_EQ(item->title(), "Kept");
}

TEST_F(MenuValidationTest, theControllerRespondsToItsOwnActionsOnly) {
    const auto tab = openTab();
    for (const Action action :
         {Action::focusAddressBar, Action::navigateFromAddressField, Action::searchFromSearchField,
          Action::goBack, Action::goForward, Action::stopLoading, Action::reload, Action::toggleBookmark,
          Action::openBookmark, Action::newWindowForTab}) {
        EXPECT_TRUE(tab->respondsTo(action)) << static_cast<int>(action);
    }
    for (const Action action :
         {Action::newTab, Action::terminate, Action::performClose, Action::selectNextTab, Action::copy}) {
        EXPECT_FALSE(tab->respondsTo(action)) << static_cast<int>(action);
    }
}
