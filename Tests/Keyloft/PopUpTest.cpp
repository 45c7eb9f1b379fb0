#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;
using TestSupport::shareNativeWindow;

using NewTabRequestTest = BrowserTest;

TEST_F(NewTabRequestTest, theNewTabButtonAsksForABlankTab) {
    const auto tab = openTab();
    int asked = 0;
    tab->onNewTab = [&](const std::optional<URL>& url, const Configuration& configuration) -> Tab {
        ++asked;
        EXPECT_EQ(url, std::nullopt);
        EXPECT_EQ(configuration, nullptr);
        return nullptr;
    };
    tab->perform(StandardAction::newWindowForTab, {});
    EXPECT_EQ(asked, 1);
}

TEST_F(NewTabRequestTest, withoutAnybodyToAskTheNewTabButtonDoesNothing) {
    const auto tab = openTab();
    tab->onNewTab = nullptr;
    tab->perform(StandardAction::newWindowForTab, {});
    EXPECT_EQ(tabs.size(), 1U);
}

namespace {

class PopUpTest : public BrowserTest {
protected:
    PopUpTest() {
        server.route("/opener",
                     HTTPResponse::html("<title>opener</title><a id=a target=_blank href=/popup>x</a>"));
        server.route("/popup",
                     HTTPResponse::html("<script>document.title = 'opener ' + !!window.opener</script>"));
    }

    [[nodiscard]] Tab openOpener() {
        const auto tab = openTab();
        tab->load(serverURL("/opener"));
        EXPECT_TRUE(waitForTitle(tab, "opener"));
        return tab;
    }
};

} // namespace

TEST_F(PopUpTest, aLinkToANewWindowOpensATabInTheSameWindow) {
    const auto opener = openOpener();
    TestSupport::runScript(*opener->webView(), "document.getElementById('a').click()");
    ASSERT_TRUE(runUntil([&] { return tabs.size() == 2; }));
    const auto popUp = tabs[1];
    // A link with target=_blank implies rel=noopener, so the new page has no opener.
    ASSERT_TRUE(waitForTitle(popUp, "opener false"));
    EXPECT_EQ(popUp->webView()->url(), serverURL("/popup"));
    EXPECT_EQ(popUp->addressField()->stringValue(), server.url("/popup"));
    EXPECT_EQ(popUp->window()->title(), "opener false");
    EXPECT_TRUE(shareNativeWindow(*opener->window(), *popUp->window()));
    EXPECT_EQ(opener->webView()->url(), serverURL("/opener"));
}

TEST_F(PopUpTest, aScriptsNewWindowIsATabThatKnowsItsOpener) {
    const auto opener = openOpener();
    TestSupport::runScript(*opener->webView(),
                           "w = window.open('/popup', '', 'width=200,height=100'); document.title = !!w");
    ASSERT_TRUE(runUntil([&] { return tabs.size() == 2; }));
    ASSERT_TRUE(waitForTitle(tabs[1], "opener true"));
    EXPECT_TRUE(waitForTitle(opener, "true"));
    // The size that the page requests is ignored.
    TestSupport::waitForLayout(*tabs[1]->window());
    EXPECT_EQ(TestSupport::contentFrame(*tabs[1]->window()).width, 1100);
    EXPECT_TRUE(shareNativeWindow(*opener->window(), *tabs[1]->window()));
    TestSupport::runScript(*opener->webView(), "w.document.title = 'from the opener'");
    EXPECT_TRUE(runUntil([&] { return tabs[1]->window()->title() == "from the opener"; }));
}

TEST_F(PopUpTest, theConfigurationIsHandedOnAndNoURL) {
    const auto opener = openOpener();
    const auto openBeside = opener->onNewTab;
    Configuration given;
    int asked = 0;
    opener->onNewTab = [&](const std::optional<URL>& url, const Configuration& configuration) {
        ++asked;
        EXPECT_EQ(url, std::nullopt);
        given = configuration;
        return openBeside(url, configuration);
    };
    TestSupport::runScript(*opener->webView(), "window.open('/popup')");
    ASSERT_TRUE(runUntil([&] { return tabs.size() == 2; }));
    EXPECT_EQ(asked, 1);
    ASSERT_NE(given, nullptr);
    EXPECT_EQ(tabs[1]->webView()->configuration(), given);
    EXPECT_EQ(given->websiteDataStore(), WebsiteDataStore::defaultStore);
    EXPECT_TRUE(waitForTitle(tabs[1], "opener true"));
}

TEST_F(PopUpTest, isRefusedWithoutAnybodyToAsk) {
    const auto opener = openOpener();
    opener->onNewTab = nullptr;
    TestSupport::runScript(*opener->webView(), "document.title = 'opened ' + !!window.open('/popup')");
    ASSERT_TRUE(waitForTitle(opener, "opened false"));
    EXPECT_EQ(tabs.size(), 1U);
    EXPECT_EQ(server.count("/popup"), 0U);
}

TEST_F(PopUpTest, isRefusedWhenNoTabIsGiven) {
    const auto opener = openOpener();
    opener->onNewTab = [](const std::optional<URL>& /*url*/, const Configuration& /*configuration*/) -> Tab {
        return nullptr;
    };
    TestSupport::runScript(*opener->webView(), "document.title = 'opened ' + !!window.open('/popup')");
    ASSERT_TRUE(waitForTitle(opener, "opened false"));
    EXPECT_EQ(server.count("/popup"), 0U);
}

TEST_F(PopUpTest, outlivesItsOpenersTab) {
    const auto opener = openOpener();
    TestSupport::runScript(*opener->webView(), "window.open('/popup')");
    ASSERT_TRUE(runUntil([&] { return tabs.size() == 2; }));
    const auto popUp = tabs[1];
    ASSERT_TRUE(waitForTitle(popUp, "opener true"));
    opener->window()->close();
    EXPECT_EQ(tabs, std::vector<Tab>{popUp});
    EXPECT_TRUE(loadPage(popUp, "/later"));
}
