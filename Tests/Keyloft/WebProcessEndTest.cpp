#include "Tests/Keyloft/BrowserTest.h"
#include "Tests/Support/WebProcesses.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::killWebProcesses;
using TestSupport::runUntil;
using TestSupport::webProcesses;

namespace {

/// Tests tabs whose web process is killed.
class WebProcessEndTest : public BrowserTest {
protected:
    /// Terminates the web processes of closed tabs, so that WebKitGTK does not reuse them for the pages of
    /// this test.
    void SetUp() override { ASSERT_TRUE(TestSupport::forgetPages()); }

    /// Adds a page whose title is `path` followed by the number of requests for the page so far, so that a
    /// reload changes the title. Returns `path`.
    std::string counting(const std::string& path) {
        server.route(path, [path, times = std::make_shared<int>(0)](const auto& /*request*/) {
            return HTTPResponse::page(path + ' ' + std::to_string(++*times));
        });
        return path;
    }

    /// Opens a tab that shows a page added by `counting`, and sets `process` to the ID of the page's web
    /// process.
    Tab openCounting(const std::string& path, const Tab& beside = nullptr) {
        const auto before = webProcesses();
        auto tab = openTab(beside);
        tab->load(serverURL(counting(path)));
        EXPECT_TRUE(waitForTitle(tab, path + " 1"));
        process = newProcess(before);
        EXPECT_NE(process, 0);
        return tab;
    }

    static pid_t newProcess(const std::vector<pid_t>& before) {
        const auto now = webProcesses();
        const auto found = std::ranges::find_if(
            now, [&](pid_t process) { return std::ranges::find(before, process) == before.end(); });
        return found == now.end() ? 0 : *found;
    }

    void expectUnchanged(const Tab& tab, const std::string& path, const std::string& title) const {
        EXPECT_EQ(tab->addressField()->stringValue(), server.url(path));
        EXPECT_EQ(tab->window()->title(), title);
        EXPECT_EQ(tab->webView()->url(), serverURL(path));
        EXPECT_FALSE(tab->isEmptyTab());
    }

    /// The web process of the page that `openCounting` opened last.
    pid_t process = 0;
};

} // namespace

TEST_F(WebProcessEndTest, theShownPageComesBackAndNobodyElseIsTouched) {
    const auto other = openCounting("/other");
    TestSupport::runScript(*other->webView(), "document.title = 'still ' + document.title");
    ASSERT_TRUE(waitForTitle(other, "still /other 1"));
    const auto shown = openCounting("/shown", other);
    std::vector<std::string> addresses;
    std::vector<std::string> titles;
    const auto followURL = shown->webView()->observe(
        WebView::Property::url, [&] { addresses.push_back(shown->addressField()->stringValue()); });
    const auto followTitle = shown->webView()->observe(WebView::Property::title,
                                                       [&] { titles.push_back(shown->window()->title()); });
    ASSERT_TRUE(killWebProcesses(*shown->webView(), {process}));
    ASSERT_TRUE(waitForTitle(shown, "/shown 2"));
    expectUnchanged(shown, "/shown", "/shown 2");
    EXPECT_EQ(addresses, std::vector<std::string>{});
    EXPECT_EQ(std::ranges::count(titles, "New Tab"), 0);
    EXPECT_FALSE(TestSupport::shownSheet(*shown->window()));
    EXPECT_FALSE(shown->progressBar()->isActive());

    EXPECT_EQ(tabs, (std::vector<Tab>{other, shown}));
    expectUnchanged(other, "/other", "still /other 1");
    EXPECT_EQ(server.count("/other"), 1U);
    TestSupport::runScript(*other->webView(), "document.title += '!'");
    EXPECT_TRUE(waitForTitle(other, "still /other 1!"));
}

TEST_F(WebProcessEndTest, aHiddenPageComesBackOnceItIsLookedAt) {
    const auto hidden = openCounting("/hidden");
    const auto hiddensProcess = process;
    const auto shown = openCounting("/shown", hidden);
    ASSERT_TRUE(killWebProcesses(*hidden->webView(), {hiddensProcess}));
    // The hidden page must not be reloaded. Load another page first, to allow time for an unwanted reload.
    ASSERT_TRUE(loadPage(shown, "/later"));
    expectUnchanged(hidden, "/hidden", "/hidden 1");
    EXPECT_EQ(server.count("/hidden"), 1U);
    EXPECT_EQ(TestSupport::tabTitles(*shown->window()), (std::vector<std::string>{"/hidden 1", "/later"}));
    TestSupport::selectTab(*hidden->window());
    EXPECT_TRUE(waitForTitle(hidden, "/hidden 2"));
    expectUnchanged(hidden, "/hidden", "/hidden 2");
}

TEST_F(WebProcessEndTest, aSecondEndWithinAMinuteWaitsForTheReloadButton) {
    const auto tab = openCounting("/page");
    ASSERT_TRUE(killWebProcesses(*tab->webView(), {process}));
    ASSERT_TRUE(waitForTitle(tab, "/page 2"));
    ASSERT_TRUE(killWebProcesses(*tab->webView(), webProcesses()));
    ASSERT_TRUE(loadPage(openTab(), "/later"));
    expectUnchanged(tab, "/page", "/page 2");
    EXPECT_FALSE(tab->webView()->isLoading());
    EXPECT_EQ(server.count("/page"), 2U);
    tab->reloadButton()->sendAction();
    EXPECT_TRUE(waitForTitle(tab, "/page 3")) << server.count("/page") << " requests";
}

TEST_F(WebProcessEndTest, aLoadUnderWayBeginsAnew) {
    const auto tab = openCounting("/page");
    server.route("/held", heldResponse());
    tab->load(serverURL("/held"));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    ASSERT_TRUE(killWebProcesses(*tab->webView(), {process}));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 2; }));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/held"));
    server.release("/held");
    EXPECT_TRUE(waitForTitle(tab, "held"));
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
    EXPECT_TRUE(tab->webView()->canGoBack());
}

TEST_F(WebProcessEndTest, aLoadUnderWayInAHiddenTabBeginsAnewOnceItIsLookedAt) {
    const auto hidden = openCounting("/page");
    const auto hiddensProcess = process;
    server.route("/endless", unfinishedPage("endless"));
    hidden->load(serverURL("/endless"));
    ASSERT_TRUE(runUntil([&] { return hidden->window()->title() == "endless"; }));
    const auto shown = openCounting("/shown", hidden);
    ASSERT_TRUE(killWebProcesses(*hidden->webView(), {hiddensProcess}));
    ASSERT_TRUE(runUntil([&] { return !hidden->webView()->isLoading(); }));
    expectUnchanged(hidden, "/endless", "endless");
    server.route("/endless", HTTPResponse::page("ended"));
    ASSERT_TRUE(loadPage(shown, "/later"));
    EXPECT_EQ(server.count("/endless"), 1U);
    TestSupport::selectTab(*hidden->window());
    EXPECT_TRUE(waitForTitle(hidden, "ended"));
}

TEST_F(WebProcessEndTest, anAnsweredPanelIsNotAnsweredAgain) {
    const auto tab = openCounting("/page");
    TestSupport::runScript(*tab->webView(),
                           "setTimeout(() => { document.title = 'answered ' + confirm('Really?') })");
    ASSERT_TRUE(waitForSheet(tab));
    TestSupport::pressSheetButton(*tab->window(), "OK");
    ASSERT_TRUE(waitForTitle(tab, "answered true"));
    ASSERT_TRUE(killWebProcesses(*tab->webView(), {process}));
    ASSERT_TRUE(waitForTitle(tab, "/page 2"));
    EXPECT_TRUE(loadPage(tab, "/next"));
}

TEST_F(WebProcessEndTest, aPagesPanelIsAnsweredAtOnce) {
    const auto tab = openCounting("/page");
    TestSupport::runScript(*tab->webView(), "setTimeout(() => alert('Hello'))");
    ASSERT_TRUE(waitForSheet(tab));
    ASSERT_TRUE(killWebProcesses(*tab->webView(), {process}));
    ASSERT_TRUE(waitForTitle(tab, "/page 2"));
    // The sheet may remain open after the web process has exited. Closing the sheet then has no effect.
    if (TestSupport::shownSheet(*tab->window())) {
        TestSupport::pressSheetButton(*tab->window(), "OK");
    }
    EXPECT_TRUE(loadPage(tab, "/next"));
}
