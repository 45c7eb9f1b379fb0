#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::nativeTitle;
using TestSupport::runUntil;
using TestSupport::tabTitles;

using WindowTitleTest = BrowserTest;

TEST_F(WindowTitleTest, isNewTabBeforeAnyPage) {
    const auto tab = openTab();
    EXPECT_EQ(tab->window()->title(), "New Tab");
    EXPECT_EQ(nativeTitle(*tab->window()), "New Tab");
}

TEST_F(WindowTitleTest, isThePagesTitle) {
    server.route("/escaped", HTTPResponse::html("<title>Caf\u00e9 &amp; &lt;b&gt; _x</title>"));
    const auto tab = openTab();
    tab->load(serverURL("/escaped"));
    ASSERT_TRUE(waitForTitle(tab, "Caf\u00e9 & <b> _x"));
    EXPECT_EQ(tab->window()->title(), "Caf\u00e9 & <b> _x");
    EXPECT_EQ(nativeTitle(*tab->window()), "Caf\u00e9 & <b> _x");
    TestSupport::runScript(*tab->webView(), "document.title = 'Changed'");
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "Changed"; }));
    EXPECT_EQ(nativeTitle(*tab->window()), "Changed");
}

TEST_F(WindowTitleTest, isTheHostOfAPageWithoutTitle) {
    server.route("/", HTTPResponse::html("<p>No title"));
    const auto tab = openTab();
    ASSERT_TRUE(loadPath(tab, "/"));
    EXPECT_EQ(tab->window()->title(), "127.0.0.1");
    EXPECT_EQ(nativeTitle(*tab->window()), "127.0.0.1");
}

TEST_F(WindowTitleTest, isTheHostOnceThePageTakesItsTitleAway) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/titled"));
    TestSupport::runScript(*tab->webView(), "document.title = ''");
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() != "/titled"; }));
    EXPECT_EQ(tab->window()->title(), "127.0.0.1");
}

TEST_F(WindowTitleTest, isNewTabForAPageWithNeitherTitleNorHost) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/titled"));
    tab->load(url("data:text/html,plain"));
    ASSERT_TRUE(runUntil([&] { return tab->webView()->canGoBack() && !tab->webView()->isLoading(); }));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() != "/titled"; }));
    EXPECT_EQ(tab->window()->title(), "New Tab");
}

TEST_F(WindowTitleTest, isEachTabsOwn) {
    const auto first = openTab();
    const auto second = openTab(first);
    const auto third = openTab(second);
    ASSERT_TRUE(loadPage(first, "/first"));
    ASSERT_TRUE(loadPage(third, "/third"));
    EXPECT_EQ(tabTitles(*first->window()), (std::vector<std::string>{"/first", "New Tab", "/third"}));
    // The native window has the title of the selected tab.
    EXPECT_EQ(nativeTitle(*first->window()), "/third");
    second->window()->makeKeyAndOrderFront();
    EXPECT_EQ(nativeTitle(*first->window()), "New Tab");
}

using AboutBlankTest = BrowserTest;

TEST_F(AboutBlankTest, countsAsNoPage) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(tab->pageURL());
    tab->load(url("about:blank"));
    ASSERT_TRUE(runUntil([&] { return tab->webView()->canGoBack() && !tab->webView()->isLoading(); }));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() != "/page"; }));
    EXPECT_EQ(tab->webView()->url(), url("about:blank"));
    EXPECT_EQ(tab->pageURL(), std::nullopt);
    EXPECT_EQ(tab->addressField()->stringValue(), "");
    EXPECT_EQ(tab->window()->title(), "New Tab");
    EXPECT_FALSE(isEnabled(*tab, BrowserAction::toggleBookmark));
    tab->toggleBookmark();
    EXPECT_TRUE(store->bookmarks().empty());
}

TEST_F(AboutBlankTest, withMoreInItsTextIsAPage) {
    const auto tab = openTab();
    tab->load(url("about:blank#x"));
    ASSERT_TRUE(runUntil([&] { return tab->webView()->url() && !tab->webView()->isLoading(); }));
    EXPECT_EQ(tab->pageURL(), url("about:blank#x"));
    EXPECT_EQ(tab->addressField()->stringValue(), "about:blank#x");
    EXPECT_TRUE(isEnabled(*tab, BrowserAction::toggleBookmark));
}

TEST_F(AboutBlankTest, makesATabThatIsNotEmpty) {
    const auto tab = openTab();
    EXPECT_TRUE(tab->isEmptyTab());
    tab->load(url("about:blank"));
    EXPECT_FALSE(tab->isEmptyTab());
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_FALSE(tab->isEmptyTab());
}

using EmptyTabTest = BrowserTest;

TEST_F(EmptyTabTest, isOneThatNeverLoadedAnything) {
    const auto tab = openTab();
    EXPECT_TRUE(tab->isEmptyTab());
    tab->addressField()->setStringValue("typed");
    EXPECT_TRUE(tab->isEmptyTab());
    server.route("/held", heldResponse());
    tab->load(serverURL("/held"));
    EXPECT_FALSE(tab->isEmptyTab());
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    EXPECT_FALSE(tab->isEmptyTab());
}
