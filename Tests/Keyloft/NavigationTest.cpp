#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

using NavigationTest = BrowserTest;

TEST_F(NavigationTest, theAddressFieldFollowsThePage) {
    const auto tab = openTab();
    EXPECT_EQ(tab->addressField()->stringValue(), "");
    ASSERT_TRUE(loadPage(tab, "/one"));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/one"));
    EXPECT_EQ(TestSupport::shownText(*tab->addressField()), server.url("/one"));
    TestSupport::runScript(*tab->webView(), "history.pushState(null, '', '/elsewhere#there')");
    EXPECT_TRUE(
        runUntil([&] { return tab->addressField()->stringValue() == server.url("/elsewhere#there"); }));
    server.route("/from", HTTPResponse::redirect("/to"));
    server.route("/to", HTTPResponse::page("to"));
    tab->load(serverURL("/from"));
    ASSERT_TRUE(waitForTitle(tab, "to"));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/to"));
}

TEST_F(NavigationTest, loadingGivesThePageTheKeyboard) {
    const auto tab = openTab();
    tab->addressField()->selectText();
    EXPECT_EQ(tab->window()->firstResponder(), tab->addressField());
    ASSERT_TRUE(loadPage(tab, "/one"));
    EXPECT_EQ(tab->window()->firstResponder(), tab->webView());
    EXPECT_TRUE(TestSupport::hasFocus(*tab->webView()));
}

TEST_F(NavigationTest, theAddressFieldsTextIsResolvedAndLoaded) {
    server.route("/typed", HTTPResponse::page("typed"));
    const auto tab = openTab();
    tab->addressField()->setStringValue("  127.0.0.1:" + std::to_string(server.port()) + "/typed ");
    tab->addressField()->sendAction();
    ASSERT_TRUE(waitForTitle(tab, "typed"));
    EXPECT_EQ(tab->webView()->url(), serverURL("/typed"));
}

TEST_F(NavigationTest, wordsInEitherFieldAreSearchedFor) {
    // Redirect the traffic, so that the search requests do not leave this machine.
    const TestSupport::TrafficRedirection redirection(server.port());
    const auto tab = openTab();
    tab->addressField()->setStringValue("two words");
    tab->addressField()->sendAction();
    EXPECT_EQ(tab->webView()->url(), url("https://duckduckgo.com/?q=two%20words"));
    tab->webView()->stopLoading();

    const auto other = openTab();
    // Text in the search field is always treated as a search, even if it looks like an address.
    other->searchField()->setStringValue("example.org");
    other->searchField()->sendAction();
    EXPECT_EQ(other->webView()->url(), url("https://duckduckgo.com/?q=example.org"));
    EXPECT_EQ(other->window()->firstResponder(), other->webView());
    other->webView()->stopLoading();
}

TEST_F(NavigationTest, blankTextDoesNothing) {
    const auto tab = openTab();
    for (const char* blank : {"", "   ", "\t"}) {
        tab->addressField()->setStringValue(blank);
        tab->navigateFromAddressField();
        tab->searchField()->setStringValue(blank);
        tab->searchFromSearchField();
        performFromMenu(*tab, BrowserAction::reload);
        tab->reloadButton()->sendAction();
        EXPECT_TRUE(tab->isEmptyTab()) << '"' << blank << '"';
        EXPECT_EQ(tab->addressField()->stringValue(), blank);
    }
    TestSupport::runPending();
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
}

TEST_F(NavigationTest, backAndForwardAreDisabledAtFirst) {
    const auto tab = openTab();
    EXPECT_FALSE(tab->backButton()->isEnabled());
    EXPECT_FALSE(tab->forwardButton()->isEnabled());
    ASSERT_TRUE(loadPage(tab, "/one"));
    EXPECT_FALSE(tab->backButton()->isEnabled());
    EXPECT_FALSE(tab->forwardButton()->isEnabled());
}

TEST_F(NavigationTest, backAndForwardGoThroughTheHistory) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    EXPECT_TRUE(tab->backButton()->isEnabled());
    EXPECT_FALSE(tab->forwardButton()->isEnabled());

    tab->backButton()->sendAction();
    ASSERT_TRUE(waitForTitle(tab, "/one"));
    EXPECT_FALSE(tab->backButton()->isEnabled());
    EXPECT_TRUE(tab->forwardButton()->isEnabled());
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/one"));

    tab->forwardButton()->sendAction();
    ASSERT_TRUE(waitForTitle(tab, "/two"));
    EXPECT_TRUE(tab->backButton()->isEnabled());
    EXPECT_FALSE(tab->forwardButton()->isEnabled());

    performFromMenu(*tab, BrowserAction::goBack);
    ASSERT_TRUE(waitForTitle(tab, "/one"));
    performFromMenu(*tab, BrowserAction::goForward);
    ASSERT_TRUE(waitForTitle(tab, "/two"));
}

TEST_F(NavigationTest, theReloadButtonStopsWhileThePageLoads) {
    server.route("/endless", unfinishedPage("endless"));
    const auto tab = openTab();
    EXPECT_EQ(tab->reloadButton()->image(), (Image{"arrow.clockwise", "Reload"}));
    tab->load(serverURL("/endless"));
    EXPECT_EQ(tab->reloadButton()->image(), (Image{"xmark", "Stop"}));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    ASSERT_TRUE(tab->webView()->isLoading());

    tab->reloadButton()->sendAction();
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_EQ(tab->reloadButton()->image(), (Image{"arrow.clockwise", "Reload"}));
    EXPECT_EQ(tab->reloadButton()->toolTip(), "Reload");
    EXPECT_EQ(server.count("/endless"), 1U);
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
}

TEST_F(NavigationTest, reloadingFromTheMenuReloadsEvenWhileThePageLoads) {
    server.route("/endless", unfinishedPage("endless"));
    const auto tab = openTab();
    tab->load(serverURL("/endless"));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    ASSERT_TRUE(tab->webView()->isLoading());
    performFromMenu(*tab, BrowserAction::reload);
    ASSERT_TRUE(runUntil([&] { return server.count("/endless") == 2; }));
    EXPECT_TRUE(tab->webView()->isLoading());
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
}

TEST_F(NavigationTest, stopStopsAnAnswerThatHasNotCome) {
    server.route("/held", heldResponse());
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/shown"));
    tab->load(serverURL("/held"));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    performFromMenu(*tab, BrowserAction::stopLoading);
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    // The previous page is still shown after the load has been stopped.
    ASSERT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == server.url("/shown"); }));
    EXPECT_EQ(tab->window()->title(), "/shown");
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
}

TEST_F(NavigationTest, reloadReloadsThePageWhateverStandsInTheAddressField) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    server.route("/other", HTTPResponse::page("other"));
    tab->addressField()->setStringValue(server.url("/other"));
    tab->reloadButton()->sendAction();
    ASSERT_TRUE(runUntil([&] { return server.count("/page") == 2 && !tab->webView()->isLoading(); }));
    performFromMenu(*tab, BrowserAction::reload);
    ASSERT_TRUE(runUntil([&] { return server.count("/page") == 3 && !tab->webView()->isLoading(); }));
    EXPECT_EQ(server.count("/other"), 0U);
}

TEST_F(NavigationTest, reloadWithoutAPageNavigatesToTheAddressFieldsText) {
    server.route("/typed", HTTPResponse::page("typed"));
    const auto byButton = openTab();
    byButton->addressField()->setStringValue(server.url("/typed"));
    byButton->reloadButton()->sendAction();
    EXPECT_TRUE(waitForTitle(byButton, "typed"));

    const auto byMenu = openTab();
    byMenu->addressField()->setStringValue(server.url("/typed"));
    performFromMenu(*byMenu, BrowserAction::reload);
    EXPECT_TRUE(waitForTitle(byMenu, "typed"));
}

TEST_F(NavigationTest, reloadOfAboutBlankDoesNotNavigate) {
    server.route("/typed", HTTPResponse::page("typed"));
    const auto tab = openTab();
    tab->load(url("about:blank"));
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    tab->addressField()->setStringValue(server.url("/typed"));
    performFromMenu(*tab, BrowserAction::reload);
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_EQ(tab->webView()->url(), url("about:blank"));
    EXPECT_EQ(server.count("/typed"), 0U);
}

TEST_F(NavigationTest, aTabIsMadeAsEveryOther) {
    const auto tab = openTab();
    const Window& window = *tab->window();
    EXPECT_EQ(window.contentSize(), (Size{.width = 1100, .height = 760}));
    EXPECT_EQ(window.minSize(), (Size{.width = 480, .height = 320}));
    EXPECT_TRUE(window.style().closable && window.style().miniaturizable && window.style().resizable);
    EXPECT_EQ(window.tabbingIdentifier(), "velde.orvane.keyloft.browser");
    EXPECT_EQ(window.frameAutosaveName(), "BrowserWindow");
    EXPECT_EQ(window.windowController(), tab);
    EXPECT_EQ(tab->webView()->configuration()->websiteDataStore(), WebsiteDataStore::defaultStore);
    EXPECT_FALSE(tab->isEditingAddress());
}

TEST_F(NavigationTest, aSwipeGoesBackAndForward) {
    EXPECT_TRUE(TestSupport::allowsSwipes(*openTab()->webView()));
}

TEST_F(NavigationTest, theToolbarsControlsAreWhatTheySay) {
    struct Row {
        std::shared_ptr<Button> button;
        Image image;
        Action action;
    };
    const auto tab = openTab();
    const Row rows[] = {
        {tab->backButton(), {"chevron.left", "Back"}, BrowserAction::goBack},
        {tab->forwardButton(), {"chevron.right", "Forward"}, BrowserAction::goForward},
        {tab->reloadButton(), {"arrow.clockwise", "Reload"}, BrowserAction::reload},
        {tab->bookmarkButton(), {"bookmark", "Bookmark this page"}, BrowserAction::toggleBookmark},
    };
    for (const auto& [button, image, action] : rows) {
        EXPECT_EQ(button->image(), image);
        EXPECT_EQ(button->toolTip(), image.accessibilityDescription);
        EXPECT_EQ(button->action(), action);
        EXPECT_EQ(button->bezelStyle(), Button::BezelStyle::texturedRounded);
        EXPECT_TRUE(button->isBordered());
    }
    EXPECT_EQ(tab->addressField()->placeholder(), "Enter a URL or search");
    EXPECT_EQ(tab->addressField()->accessibilityLabel(), "Address");
    EXPECT_EQ(tab->addressField()->font(), Font{14});
    EXPECT_EQ(tab->addressField()->action(), BrowserAction::navigateFromAddressField);
    EXPECT_EQ(tab->searchField()->placeholder(), "Search DuckDuckGo");
    EXPECT_EQ(tab->searchField()->accessibilityLabel(), "Search DuckDuckGo");
    EXPECT_EQ(tab->searchField()->action(), BrowserAction::searchFromSearchField);
    EXPECT_EQ(tab->bookmarksBar()->accessibilityLabel(), "Bookmarks bar");
}
