#include "Tests/Keyloft/BrowserTest.h"
#include "Tests/Support/Clock.h"

using namespace Platform;
using TestSupport::present;
using TestSupport::runUntil;
using TestSupport::ShownSheet;
using TestSupport::shownSheet;

namespace {

class LoadErrorSheetTest : public BrowserTest {
protected:
    static Error error(const std::string& domain, int code,
                       const std::optional<std::string>& failingURL = std::nullopt) {
        return {.domain = domain,
                .code = code,
                .localizedDescription = "It went wrong.",
                .failingURL = failingURL};
    }

    static ShownSheet sheet(const std::string& text) {
        return {.texts = {"Keyloft can't open the page", text}, .buttons = {"OK"}};
    }
};

} // namespace

TEST_F(LoadErrorSheetTest, saysWhatWentWrongAndWhere) {
    const auto tab = openTab();
    tab->didFailProvisionalNavigation(*tab->webView(),
                                      error("NSURLErrorDomain", -1003, "http://failing.test/"));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\nhttp://failing.test/"));
    TestSupport::pressSheetButton(*tab->window(), "OK");
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);

    tab->didFailNavigation(*tab->webView(), error("NSURLErrorDomain", -1005, "http://failing.test/2"));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\nhttp://failing.test/2"));
}

TEST_F(LoadErrorSheetTest, namesThePageWhereTheFailingAddressIsUnknown) {
    const auto tab = openTab();
    tab->didFailNavigation(*tab->webView(), error("NSURLErrorDomain", -1005));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\n"));
    TestSupport::pressSheetButton(*tab->window(), "OK");

    ASSERT_TRUE(loadPage(tab, "/page"));
    tab->didFailNavigation(*tab->webView(), error("NSURLErrorDomain", -1005));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\n" + server.url("/page")));
}

TEST_F(LoadErrorSheetTest, aCancelledOrInterruptedLoadShowsNone) {
    const auto tab = openTab();
    tab->didFailNavigation(*tab->webView(), error("NSURLErrorDomain", -999, "http://failing.test/"));
    tab->didFailProvisionalNavigation(*tab->webView(),
                                      error("NSURLErrorDomain", -999, "http://failing.test/"));
    tab->didFailNavigation(*tab->webView(), error("WebKitErrorDomain", 102, "http://failing.test/"));
    tab->didFailProvisionalNavigation(*tab->webView(),
                                      error("WebKitErrorDomain", 102, "http://failing.test/"));
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
}

TEST_F(LoadErrorSheetTest, domainAndCodeBothDecide) {
    const std::pair<const char*, int> shown[] = {{"NSURLErrorDomain", 102},
                                                 {"WebKitErrorDomain", -999},
                                                 {"WebKitErrorDomain", 101},
                                                 {"Other", -999},
                                                 {"Other", 102}};
    const auto tab = openTab();
    for (const auto& [domain, code] : shown) {
        tab->didFailProvisionalNavigation(*tab->webView(), error(domain, code, "x:y"));
        EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\nx:y")) << domain << ' ' << code;
        TestSupport::pressSheetButton(*tab->window(), "OK");
    }
}

TEST_F(LoadErrorSheetTest, severalWaitForEachOther) {
    const auto tab = openTab();
    tab->didFailNavigation(*tab->webView(), error("Other", 1, "first:"));
    tab->didFailNavigation(*tab->webView(), error("Other", 1, "second:"));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\nfirst:"));
    TestSupport::pressSheetButton(*tab->window(), "OK");
    EXPECT_EQ(shownSheet(*tab->window()), sheet("It went wrong.\nsecond:"));
    TestSupport::pressSheetButton(*tab->window(), "OK");
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
}

TEST_F(LoadErrorSheetTest, stretchesOverItsOwnTabOnly) {
    const auto first = openTab();
    const auto second = openTab(first);
    first->didFailNavigation(*first->webView(), error("Other", 1, "x:y"));
    EXPECT_TRUE(shownSheet(*first->window()));
    EXPECT_FALSE(shownSheet(*second->window()));
    EXPECT_TRUE(TestSupport::isSelectedTab(*second->window()));
}

TEST_F(LoadErrorSheetTest, aHostThatIsNotFoundShowsItAndTheTabStaysUsable) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/shown"));
    tab->load(url("http://no-such-host.invalid/path"));
    ASSERT_TRUE(waitForSheet(tab));
    const auto shown = present(shownSheet(*tab->window()));
    ASSERT_EQ(shown.texts.size(), 2U);
    EXPECT_EQ(shown.texts[0], "Keyloft can't open the page");
    EXPECT_TRUE(shown.texts[1].ends_with("\nhttp://no-such-host.invalid/path")) << shown.texts[1];
    // The message and the address are on separate lines.
    EXPECT_GT(shown.texts[1].find('\n'), 0U);
    EXPECT_EQ(shown.texts[1].find('\n'), shown.texts[1].rfind('\n'));
    EXPECT_EQ(shown.buttons, std::vector<std::string>{"OK"});

    // The previous page is still shown after the failed load.
    EXPECT_EQ(tab->window()->title(), "/shown");
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/shown"));
    EXPECT_FALSE(tab->progressBar()->isActive());
    TestSupport::pressSheetButton(*tab->window(), "OK");
    EXPECT_TRUE(loadPage(tab, "/next"));
}

TEST_F(LoadErrorSheetTest, aRefusedConnectionShowsIt) {
    const TestSupport::HTTPServer::RefusedPort refused;
    const std::string address = "http://127.0.0.1:" + std::to_string(refused.port()) + "/";
    const auto tab = openTab();
    tab->load(url(address));
    ASSERT_TRUE(waitForSheet(tab));
    EXPECT_TRUE(present(shownSheet(*tab->window())).texts.at(1).ends_with("\n" + address));
    // No page was loaded, so the tab is still empty.
    EXPECT_TRUE(tab->isEmptyTab());
    EXPECT_EQ(tab->window()->title(), "New Tab");
}

TEST_F(LoadErrorSheetTest, aServerThatNeverAnswersShowsItOnceTheTimeIsUp) {
    server.route("/held", heldResponse());
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/shown"));
    tab->webView()->load({.url = serverURL("/held"), .timeoutInterval = 0.3});
    EXPECT_TRUE(tab->progressBar()->isActive());
    ASSERT_TRUE(waitForSheet(tab));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("The request timed out.\n" + server.url("/held")));
    EXPECT_FALSE(tab->progressBar()->isActive());
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/shown"));
    EXPECT_EQ(tab->window()->title(), "/shown");
    TestSupport::pressSheetButton(*tab->window(), "OK");
    TestSupport::runPending();
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
    EXPECT_TRUE(loadPage(tab, "/next"));
}

TEST_F(LoadErrorSheetTest, aLoadHasAMinute) {
    using namespace std::chrono_literals;
    server.route("/held", heldResponse());
    const auto tab = openTab();
    tab->load(serverURL("/held"));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    TestSupport::advanceClock(55s);
    TestSupport::runPending();
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
    TestSupport::advanceClock(5s);
    ASSERT_TRUE(waitForSheet(tab));
    EXPECT_EQ(shownSheet(*tab->window()), sheet("The request timed out.\n" + server.url("/held")));
}

TEST_F(LoadErrorSheetTest, aNavigationThatReplacesAnotherShowsNone) {
    server.route("/held", heldResponse());
    const auto tab = openTab();
    tab->load(serverURL("/held"));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    ASSERT_TRUE(loadPage(tab, "/replacing"));
    TestSupport::runPending();
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/replacing"));
}

TEST_F(LoadErrorSheetTest, aDownloadIsSilentlyRefused) {
    server.route("/file", {.headers = {{"Content-Type", "application/octet-stream"},
                                       {"Content-Disposition", "attachment; filename=file.bin"}},
                           .body = "bytes"});
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/shown"));
    ASSERT_TRUE(loadPath(tab, "/file"));
    ASSERT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == server.url("/shown"); }));
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
    EXPECT_EQ(tab->window()->title(), "/shown");
}
