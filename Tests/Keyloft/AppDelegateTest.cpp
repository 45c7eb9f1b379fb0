#include "Tests/Keyloft/AppDelegateTest.h"

#include "Platform/AppKit/Application.h"
#include "Tests/Support/Program.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

using namespace Platform;
using Keyloft::AppDelegate;
using KeyloftBrowserKit::Bookmark;
using TestSupport::HTTPResponse;
using TestSupport::isActive;
using TestSupport::isSelectedTab;
using TestSupport::runUntil;
using TestSupport::shareNativeWindow;
using TestSupport::tabTitles;

AppDelegateTest::AppDelegateTest() {
    const std::filesystem::path file = AppDelegate::bookmarksFile().filePath();
    std::filesystem::create_directories(file.parent_path());
    TestSupport::writeContents(file, "[]");
    delegate = AppDelegate::create();
    Application::shared().setDelegate(delegate);
    delegate->applicationWillFinishLaunching();
}

AppDelegateTest::~AppDelegateTest() {
    if (delegate) {
        for (const auto& tab : controllers()) {
            tab->window()->close();
        }
    }
    Application::shared().setMainMenu(nullptr);
    TestSupport::runPending();
    std::filesystem::remove_all(std::filesystem::path(AppDelegate::bookmarksFile().filePath()).parent_path());
}

AppDelegateTest::Tab AppDelegateTest::launch() {
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(controllers().size(), 1U);
    TestSupport::waitForLayout(*controllers().front()->window());
    return controllers().front();
}

AppDelegateTest::Tab AppDelegateTest::openPage(const std::string& path, const Tab& beside) {
    server.route(path, HTTPResponse::page(path));
    const auto tab = delegate->openTab(serverURL(path), beside ? beside->window() : nullptr, nullptr);
    EXPECT_TRUE(waitForTitle(tab, path));
    return tab;
}

void AppDelegateTest::openURLs(const std::vector<std::string>& urls) {
    std::vector<URL> parsed;
    for (const auto& text : urls) {
        server.route(url(text).path(), HTTPResponse::page(text));
        parsed.push_back(url(text));
    }
    delegate->applicationOpenURLs(parsed);
}

// Launching the application

TEST_F(AppDelegateTest, launchingOpensOneBlankTabWithTheAddressSelected) {
    EXPECT_TRUE(controllers().empty());
    const auto tab = launch();
    EXPECT_TRUE(tab->isEmptyTab());
    EXPECT_EQ(tab->window()->title(), "New Tab");
    EXPECT_EQ(TestSupport::nativeTitle(*tab->window()), "New Tab");
    EXPECT_EQ(tabTitles(*tab->window()), std::vector<std::string>{"New Tab"});
    EXPECT_EQ(tab->window()->firstResponder(), tab->addressField());
    EXPECT_TRUE(TestSupport::hasFocus(*tab->addressField()));
    EXPECT_TRUE(tab->window()->isVisible());
}

TEST_F(AppDelegateTest, launchingToOpenAURLMakesNoBlankTab) {
    openURLs({server.url("/handed")});
    delegate->applicationDidFinishLaunching();
    ASSERT_EQ(controllers().size(), 1U);
    const auto tab = controllers().front();
    ASSERT_TRUE(waitForTitle(tab, server.url("/handed")));
    EXPECT_EQ(tab->webView()->url(), serverURL("/handed"));
    EXPECT_EQ(tab->window()->firstResponder(), tab->webView());
    EXPECT_EQ(tabTitles(*tab->window()).size(), 1U);
}

TEST_F(AppDelegateTest, launchingBringsTheProgramToTheFront) {
    const TestSupport::OtherWindow other;
    delegate->applicationDidFinishLaunching();
    EXPECT_TRUE(runUntil([&] { return isActive(*controllers().at(0)->window()); }));
}

TEST_F(AppDelegateTest, closingTheLastTabDoesNotEndTheProgram) {
    EXPECT_FALSE(delegate->applicationShouldTerminateAfterLastWindowClosed());
    launch()->window()->close();
    EXPECT_TRUE(controllers().empty());
}

TEST_F(AppDelegateTest, reopeningOpensABlankTabOnlyWithoutAVisibleWindow) {
    const auto first = launch();
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_EQ(controllers().size(), 1U);
    // The blank tab opens in a new window, even though another window is open.
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    ASSERT_EQ(controllers().size(), 2U);
    EXPECT_TRUE(controllers()[1]->isEmptyTab());
    EXPECT_FALSE(shareNativeWindow(*first->window(), *controllers()[1]->window()));
}

TEST_F(AppDelegateTest, theBookmarksLieInTheApplicationSupportDirectory) {
    const char* home = std::getenv("HOME");
    ASSERT_NE(home, nullptr);
    EXPECT_EQ(
        AppDelegate::bookmarksFile(),
        URL::fromFilePath(std::string(home) + "/Library/Application Support/Keyloft/bookmarks.json", false));
    delegate->bookmarks()->add({"Kept", url("https://kept.test/")});
    EXPECT_EQ(
        TestSupport::contentsOf(std::string(home) + "/Library/Application Support/Keyloft/bookmarks.json"),
        Bookmark::encode(delegate->bookmarks()->bookmarks()));
    EXPECT_EQ(AppDelegate::create()->bookmarks()->bookmarks(),
              (std::vector<Bookmark>{{"Kept", url("https://kept.test/")}}));
}

TEST_F(AppDelegateTest, everyTabSharesTheOneStore) {
    const auto first = launch();
    const auto second = openPage("/page");
    second->toggleBookmark();
    EXPECT_EQ(delegate->bookmarks()->bookmarks(), (std::vector<Bookmark>{{"/page", serverURL("/page")}}));
    EXPECT_EQ(bookmarkButtons(*first).size(), 1U);
}

// Opening URLs

TEST_F(AppDelegateTest, theFirstURLFillsTheBlankTabAndTheSecondOpensOneBesideIt) {
    const auto blank = launch();
    openURLs({server.url("/one"), server.url("/two")});
    ASSERT_EQ(controllers().size(), 2U);
    const auto second = controllers()[1];
    EXPECT_EQ(controllers()[0], blank);
    ASSERT_TRUE(waitForTitle(blank, server.url("/one")));
    ASSERT_TRUE(waitForTitle(second, server.url("/two")));
    EXPECT_TRUE(shareNativeWindow(*blank->window(), *second->window()));
    EXPECT_TRUE(isSelectedTab(*second->window()));
    EXPECT_EQ(tabTitles(*blank->window()),
              (std::vector<std::string>{server.url("/one"), server.url("/two")}));
}

TEST_F(AppDelegateTest, severalURLsWithoutAWindowShareOneInTheirOrder) {
    openURLs({server.url("/one"), server.url("/two"), server.url("/three")});
    ASSERT_EQ(controllers().size(), 3U);
    const char* const paths[] = {"/one", "/two", "/three"};
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(waitForTitle(controllers()[i], server.url(paths[i])));
    }
    EXPECT_EQ(tabTitles(*controllers()[0]->window()),
              (std::vector<std::string>{server.url("/one"), server.url("/two"), server.url("/three")}));
}

TEST_F(AppDelegateTest, aURLBesideAPageOpensATab) {
    const auto page = openPage("/page");
    openURLs({server.url("/handed")});
    ASSERT_EQ(controllers().size(), 2U);
    ASSERT_TRUE(waitForTitle(controllers()[1], server.url("/handed")));
    EXPECT_EQ(page->webView()->url(), serverURL("/page"));
    EXPECT_TRUE(shareNativeWindow(*page->window(), *controllers()[1]->window()));
}

TEST_F(AppDelegateTest, aBlankTabBehindThePageIsNotFilled) {
    const auto blank = launch();
    const auto page = openPage("/page", blank);
    openURLs({server.url("/handed")});
    ASSERT_EQ(controllers().size(), 3U);
    EXPECT_TRUE(blank->isEmptyTab());
    EXPECT_TRUE(waitForTitle(controllers()[2], server.url("/handed")));
}

TEST_F(AppDelegateTest, aTabWithAboutBlankIsNotFilled) {
    const auto tab = launch();
    tab->load(url("about:blank"));
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    openURLs({server.url("/handed")});
    ASSERT_EQ(controllers().size(), 2U);
    EXPECT_EQ(tab->webView()->url(), url("about:blank"));
}

TEST_F(AppDelegateTest, aTabThatLoadsIsNotFilled) {
    server.route("/held", heldResponse());
    const auto tab = launch();
    tab->load(serverURL("/held"));
    openURLs({server.url("/handed")});
    ASSERT_EQ(controllers().size(), 2U);
    EXPECT_EQ(tab->webView()->url(), serverURL("/held"));
}

TEST_F(AppDelegateTest, otherSchemesOpenNothing) {
    const auto blank = launch();
    const std::string authority = "127.0.0.1:" + std::to_string(server.port());
    for (const std::string& text :
         {std::string("mailto:someone@example.org"), std::string("file:///etc/hostname"),
          "HTTP://" + authority + "/upper", "Https://" + authority + "/upper", "httpx://" + authority + "/",
          std::string("about:blank"), std::string("//" + authority + "/no-scheme"),
          std::string("data:text/html,x"), std::string("javascript:1")}) {
        delegate->applicationOpenURLs({url(text)});
    }
    EXPECT_EQ(controllers(), std::vector<Tab>{blank});
    EXPECT_TRUE(blank->isEmptyTab());
    TestSupport::runPending();
    EXPECT_EQ(server.count("/upper"), 0U);

    // An ignored URL does not prevent the URLs that follow it from being opened.
    openURLs({"mailto:someone@example.org", server.url("/handed")});
    EXPECT_TRUE(waitForTitle(blank, server.url("/handed")));
    EXPECT_EQ(controllers().size(), 1U);
}

TEST_F(AppDelegateTest, anythingHandedOverBringsTheProgramToTheFront) {
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    const std::vector<std::vector<URL>> lists = {
        {}, {url("mailto:someone@example.org")}, {serverURL("/handed")}};
    for (const auto& urls : lists) {
        const TestSupport::OtherWindow other;
        EXPECT_TRUE(runUntil([&] { return !isActive(*tab->window()); }));
        delegate->applicationOpenURLs(urls);
        EXPECT_TRUE(runUntil([&] { return isActive(*tab->window()); })) << urls.size();
    }
    EXPECT_EQ(controllers(), std::vector<Tab>{tab});
}

TEST_F(AppDelegateTest, anEmptyListWithoutAWindowOpensNone) {
    delegate->applicationOpenURLs({});
    delegate->applicationOpenURLs({url("mailto:someone@example.org")});
    EXPECT_TRUE(controllers().empty());
}

// The front window

TEST_F(AppDelegateTest, thereIsNoFrontWindowWithoutATab) {
    EXPECT_EQ(delegate->frontBrowserWindow(), nullptr);
}

TEST_F(AppDelegateTest, theFrontWindowIsTheMainOne) {
    const auto first = launch();
    const auto second = openPage("/second", first);
    const auto elsewhere = openPage("/elsewhere");
    EXPECT_EQ(delegate->frontBrowserWindow(), elsewhere->window());
    first->window()->makeKeyAndOrderFront();
    EXPECT_EQ(delegate->frontBrowserWindow(), first->window());
    TestSupport::selectTab(*second->window());
    EXPECT_EQ(delegate->frontBrowserWindow(), second->window());

    openURLs({server.url("/handed")});
    ASSERT_EQ(controllers().size(), 4U);
    EXPECT_TRUE(shareNativeWindow(*first->window(), *controllers()[3]->window()));
}

TEST_F(AppDelegateTest, withAnotherMainWindowTheFrontOneIsTheLastTabs) {
    const auto first = launch();
    const auto last = openPage("/last");
    first->window()->makeKeyAndOrderFront();
    const auto other = Window::create({.width = 300, .height = 200}, {});
    other->makeKeyAndOrderFront();
    ASSERT_EQ(Application::shared().mainWindow(), other);
    EXPECT_EQ(delegate->frontBrowserWindow(), last->window());
    other->close();
}

TEST_F(AppDelegateTest, otherProgramsWindowsDoNotChangeTheFrontOne) {
    const auto first = launch();
    openPage("/last");
    TestSupport::activate(*first->window());
    const TestSupport::OtherWindow other;
    EXPECT_EQ(delegate->frontBrowserWindow(), first->window());
}

TEST_F(AppDelegateTest, pagesAndTabsGoToTheWindowUsedLastWhileAnotherProgramHasTheKeyboard) {
    const auto older = openPage("/older");
    const auto newer = openPage("/newer");
    TestSupport::activate(*newer->window());
    TestSupport::activate(*older->window());
    const TestSupport::Program other(KEYLOFT_OTHER_PROGRAM, {});
    ASSERT_TRUE(runUntil([&] { return !isActive(*older->window()) && !isActive(*newer->window()); }));

    EXPECT_EQ(delegate->frontBrowserWindow(), older->window());
    openURLs({server.url("/handed")});
    ASSERT_EQ(controllers().size(), 3U);
    EXPECT_TRUE(shareNativeWindow(*older->window(), *controllers()[2]->window()));
    EXPECT_TRUE(runUntil([&] { return isActive(*older->window()); }));
    EXPECT_TRUE(sendAction(BrowserAction::newTab, nullptr, {}));
    ASSERT_EQ(controllers().size(), 4U);
    EXPECT_TRUE(shareNativeWindow(*older->window(), *controllers()[3]->window()));
}

TEST_F(AppDelegateTest, onceTheFrontWindowIsGoneTheOneUsedBeforeItIsInFront) {
    const auto first = openPage("/first");
    const auto second = openPage("/second");
    const auto third = openPage("/third");
    first->window()->makeKeyAndOrderFront();
    third->window()->makeKeyAndOrderFront();
    third->window()->close();
    EXPECT_EQ(delegate->frontBrowserWindow(), first->window());
    first->window()->close();
    EXPECT_EQ(delegate->frontBrowserWindow(), second->window());
}

// Opening new tabs

TEST_F(AppDelegateTest, newTabOpensABlankTabInTheFrontWindow) {
    const auto page = openPage("/page");
    EXPECT_TRUE(sendAction(BrowserAction::newTab, nullptr, {}));
    ASSERT_EQ(controllers().size(), 2U);
    const auto tab = controllers()[1];
    EXPECT_TRUE(tab->isEmptyTab());
    EXPECT_TRUE(shareNativeWindow(*page->window(), *tab->window()));
    EXPECT_TRUE(isSelectedTab(*tab->window()));
    TestSupport::waitForLayout(*tab->window());
    EXPECT_TRUE(TestSupport::hasFocus(*tab->addressField()));
}

TEST_F(AppDelegateTest, newTabWithoutAWindowOpensOne) {
    EXPECT_TRUE(sendAction(BrowserAction::newTab, nullptr, {}));
    ASSERT_EQ(controllers().size(), 1U);
    EXPECT_TRUE(controllers()[0]->window()->isVisible());
    controllers()[0]->window()->close();
    EXPECT_TRUE(sendAction(BrowserAction::newTab, nullptr, {}));
    EXPECT_EQ(controllers().size(), 1U);
}

TEST_F(AppDelegateTest, newTabIsItsOnlyAction) {
    EXPECT_TRUE(delegate->respondsTo(BrowserAction::newTab));
    for (const Action action :
         {BrowserAction::focusAddressBar, BrowserAction::reload, BrowserAction::toggleBookmark,
          BrowserAction::openBookmark, StandardAction::newWindowForTab, StandardAction::performClose,
          StandardAction::terminate, StandardAction::selectAll}) {
        EXPECT_FALSE(delegate->respondsTo(action)) << action.name();
    }
}

TEST_F(AppDelegateTest, theTabStripsButtonOpensABlankTabBesideTheSelectedOne) {
    const auto first = launch();
    const auto second = openPage("/second", first);
    first->window()->makeKeyAndOrderFront();
    TestSupport::clickNewTabButton(*first->window());
    ASSERT_EQ(controllers().size(), 3U);
    EXPECT_TRUE(controllers()[2]->isEmptyTab());
    EXPECT_TRUE(isSelectedTab(*controllers()[2]->window()));
    EXPECT_EQ(tabTitles(*first->window()), (std::vector<std::string>{"New Tab", "New Tab", "/second"}));
}

TEST_F(AppDelegateTest, aPopUpJoinsItsOpenersWindow) {
    server.route("/opener", HTTPResponse::html("<title>opener</title>"));
    server.route("/popup",
                 HTTPResponse::html("<script>document.title = 'opener ' + !!window.opener</script>"));
    const auto opener = delegate->openTab(serverURL("/opener"), nullptr, nullptr);
    ASSERT_TRUE(waitForTitle(opener, "opener"));
    const auto elsewhere = openPage("/elsewhere");
    TestSupport::runScript(*opener->webView(), "window.open('/popup')");
    ASSERT_TRUE(runUntil([&] { return controllers().size() == 3; }));
    const auto popUp = controllers()[2];
    ASSERT_TRUE(waitForTitle(popUp, "opener true"));
    EXPECT_TRUE(shareNativeWindow(*opener->window(), *popUp->window()));
    EXPECT_FALSE(shareNativeWindow(*elsewhere->window(), *popUp->window()));
    EXPECT_EQ(popUp->addressField()->stringValue(), server.url("/popup"));
}

TEST_F(AppDelegateTest, onNewTabLoadsTheURLGivenInItsWindow) {
    const auto first = launch();
    const auto elsewhere = openPage("/elsewhere");
    server.route("/asked", HTTPResponse::page("asked"));
    const auto tab = first->onNewTab(serverURL("/asked"), nullptr);
    ASSERT_NE(tab, nullptr);
    EXPECT_EQ(controllers(), (std::vector<Tab>{first, elsewhere, tab}));
    EXPECT_TRUE(shareNativeWindow(*first->window(), *tab->window()));
    EXPECT_TRUE(waitForTitle(tab, "asked"));
}

TEST_F(AppDelegateTest, onNewTabOfATabThatIsGoneOpensAWindow) {
    auto first = launch();
    const auto other = openPage("/other", first);
    const auto onNewTab = first->onNewTab;
    first->window()->close();
    const std::weak_ptr<Controller> weak = std::exchange(first, nullptr);
    ASSERT_TRUE(runUntil([&] { return weak.expired(); }));
    const auto tab = onNewTab(std::nullopt, nullptr);
    ASSERT_NE(tab, nullptr);
    EXPECT_FALSE(shareNativeWindow(*other->window(), *tab->window()));
    EXPECT_EQ(controllers(), (std::vector<Tab>{other, tab}));
}

TEST_F(AppDelegateTest, aTabsClosuresAreSafeOnceTheDelegateIsGone) {
    const auto tab = launch();
    const std::weak_ptr<AppDelegate> weak = std::exchange(delegate, nullptr);
    ASSERT_TRUE(weak.expired());
    EXPECT_EQ(tab->onNewTab(std::nullopt, nullptr), nullptr);
    tab->perform(StandardAction::newWindowForTab, {});
    tab->onClose();
    tab->window()->close();
}

// Closing tabs and windows

TEST_F(AppDelegateTest, closingATabTakesExactlyThatOneOut) {
    const auto first = launch();
    const auto second = openPage("/second", first);
    const auto third = openPage("/third");
    const auto fourth = openPage("/fourth", second);
    EXPECT_EQ(controllers(), (std::vector<Tab>{first, second, third, fourth}));
    second->window()->close();
    EXPECT_EQ(controllers(), (std::vector<Tab>{first, third, fourth}));
    TestSupport::closeTab(*third->window());
    EXPECT_EQ(controllers(), (std::vector<Tab>{first, fourth}));
    second->onClose();
    EXPECT_EQ(controllers(), (std::vector<Tab>{first, fourth}));
    fourth->window()->close();
    first->window()->close();
    EXPECT_TRUE(controllers().empty());
}

TEST_F(AppDelegateTest, closingAWindowClosesEachOfItsManyTabsOnceInOrder) {
    const auto first = launch();
    const auto elsewhere = openPage("/elsewhere");
    std::vector<Tab> tabs = {first};
    std::vector<Tab> closed;
    for (int i = 1; i < 12; ++i) {
        tabs.push_back(delegate->openTab(std::nullopt, tabs.back()->window(), nullptr));
    }
    for (const auto& tab : tabs) {
        tab->onClose = [&closed, tab = tab.get(), onClose = tab->onClose] {
            closed.push_back(std::static_pointer_cast<Controller>(tab->shared_from_this()));
            onClose();
        };
    }
    tabs[8]->window()->makeKeyAndOrderFront();
    TestSupport::activate(*tabs[8]->window());
    TestSupport::pressKey("alt+F4");
    ASSERT_TRUE(runUntil([&] { return controllers().size() == 1; }));
    TestSupport::runPending();
    EXPECT_EQ(closed, tabs);
    EXPECT_EQ(controllers(), std::vector<Tab>{elsewhere});
    EXPECT_EQ(delegate->frontBrowserWindow(), elsewhere->window());
}

TEST_F(AppDelegateTest, nothingOfAClosedTabIsLeft) {
    std::vector<std::weak_ptr<Controller>> tabs;
    std::vector<std::weak_ptr<WebView>> views;
    {
        const auto first = launch();
        openPage("/second", first);
        openPage("/third");
        for (const auto& tab : controllers()) {
            tabs.emplace_back(tab);
            views.emplace_back(tab->webView());
            tab->window()->close();
        }
    }
    EXPECT_TRUE(runUntil([&] {
        return std::ranges::all_of(tabs, [](const auto& tab) { return tab.expired(); }) &&
               std::ranges::all_of(views, [](const auto& view) { return view.expired(); });
    }));
}

TEST_F(AppDelegateTest, theDelegateTakesItsTabsWithIt) {
    const std::weak_ptr<Controller> tab = launch();
    delegate.reset();
    EXPECT_TRUE(runUntil([&] { return tab.expired(); }));
}
