#include "Tests/Keyloft/AppDelegateTest.h"
#include "Tests/Support/Waiting.h"

#include <iterator>
#include <string>

using namespace Platform;
using TestSupport::hasFocus;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::typeText;

namespace {

class MisbehavingPageTest : public AppDelegateTest {
protected:
    /// Runs the script without a user gesture and waits until there are `count` tabs.
    void runAndWaitForTabs(const Tab& tab, const std::string& script, std::size_t count) {
        TestSupport::runScript(*tab->webView(), script);
        ASSERT_TRUE(runUntil([&] { return controllers().size() == count; }, TestSupport::patience))
            << controllers().size();
    }
};

} // namespace

TEST_F(MisbehavingPageTest, aHundredWindowsBecomeAHundredTabsOfItsWindow) {
    server.route("/popup", HTTPResponse::page("popup"));
    const auto opener = openPage("/opener");
    const auto elsewhere = openPage("/elsewhere");
    runAndWaitForTabs(opener,
                      "let opened = 0; for (let i = 0; i < 100; ++i) if (window.open('/popup')) ++opened;"
                      "document.title = 'opened ' + opened",
                      102);
    ASSERT_TRUE(waitForTitle(opener, "opened 100"));
    EXPECT_EQ(TestSupport::tabTitles(*opener->window()).size(), 101U);
    EXPECT_EQ(TestSupport::tabTitles(*elsewhere->window()).size(), 1U);
    ASSERT_TRUE(waitForTitle(controllers().back(), "popup"));
    EXPECT_TRUE(loadPage(elsewhere, "/after"));
    TestSupport::closeNativeWindow(*opener->window());
    EXPECT_EQ(controllers(), std::vector<Tab>{elsewhere});
}

TEST_F(MisbehavingPageTest, aPageThatOpensWindowsForeverCanBeClosed) {
    server.route("/popup", HTTPResponse::page("popup"));
    const auto elsewhere = openPage("/elsewhere");
    auto opener = openPage("/opener");
    runAndWaitForTabs(opener, "setInterval(() => window.open('/popup'), 20)", 7);
    TestSupport::closeNativeWindow(*opener->window());
    EXPECT_EQ(controllers(), std::vector<Tab>{elsewhere});
    opener.reset();
    EXPECT_TRUE(loadPage(elsewhere, "/after"));
    EXPECT_EQ(controllers(), std::vector<Tab>{elsewhere});
}

TEST_F(MisbehavingPageTest, aPageThatNeverFinishesIsUsableAndCanBeStoppedReplacedAndClosed) {
    server.route("/endless", unfinishedPage("endless"));
    const auto tab = delegate->openTab(serverURL("/endless"), nullptr, nullptr);
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    ASSERT_TRUE(tab->webView()->isLoading());
    TestSupport::runScript(*tab->webView(), "document.title = 'alive'");
    EXPECT_TRUE(runUntil([&] { return tab->window()->title() == "alive"; }));
    tab->toggleBookmark();
    EXPECT_TRUE(tab->isBookmarked());
    EXPECT_TRUE(loadPage(tab, "/replacing"));
    tab->load(serverURL("/endless"));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    performFromMenu(*tab, BrowserAction::stopLoading);
    EXPECT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    EXPECT_EQ(tab->webView()->url(), serverURL("/endless"));
    EXPECT_FALSE(TestSupport::shownSheet(*tab->window()));
    tab->webView()->reload();
    ASSERT_TRUE(runUntil([&] { return server.count("/endless") == 3; }));
    tab->window()->close();
    EXPECT_TRUE(controllers().empty());
}

TEST_F(MisbehavingPageTest, aPageThatClosesItselfStaysOpen) {
    server.route("/popup", HTTPResponse::page("popup"));
    const auto opened = openPage("/opened");
    runAndWaitForTabs(opened, "w = window.open('/popup')", 2);
    const auto popUp = controllers()[1];
    ASSERT_TRUE(waitForTitle(popUp, "popup"));
    for (const auto& tab : {opened, popUp}) {
        TestSupport::runScript(*tab->webView(), "document.title = 'closing'; window.close();"
                                                "setTimeout(() => document.title = 'still here')");
        EXPECT_TRUE(waitForTitle(tab, "still here"));
    }
    TestSupport::runScript(*opened->webView(), "w.close(); setTimeout(() => document.title = 'closed it')");
    EXPECT_TRUE(waitForTitle(opened, "closed it"));
    EXPECT_EQ(controllers(), (std::vector<Tab>{opened, popUp}));
    for (const auto& tab : {opened, popUp}) {
        EXPECT_TRUE(loadPage(tab, "/after"));
    }
}

TEST_F(MisbehavingPageTest, redirectsWhileTheUserTypesLeaveTheTextAlone) {
    // Each page navigates to the next page in a different way, without user interaction.
    const std::string next[] = {
        "<script>onload = () => setTimeout(() => location = '/hop1')</script>",
        "<meta http-equiv=refresh content='0; url=/hop2'>",
        "<script>onload = () => setTimeout(() => location.replace('/hop3'))</script>",
        "<script>onload = () => setTimeout(() => { history.pushState(null, '', '/hop4-pushed');"
        "    document.title = 'last' })</script>",
    };
    for (std::size_t i = 0; i < std::size(next); ++i) {
        auto response = HTTPResponse::html("<title>hop</title>" + next[i]);
        if (i == 0) {
            response.ending = HTTPResponse::Ending::held;
        }
        server.route("/hop" + std::to_string(i), response);
    }
    const auto tab = openPage("/page");
    TestSupport::activate(*tab->window());
    tab->load(serverURL("/hop0"));
    ASSERT_TRUE(runUntil([&] { return server.count("/hop0") == 1; }));
    pressKey("ctrl+l");
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->addressField()); }));
    typeText("half");
    ASSERT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == "half"; }));
    server.release("/hop0");
    ASSERT_TRUE(waitForTitle(tab, "last"));
    ASSERT_TRUE(runUntil([&] { return tab->webView()->url() == serverURL("/hop4-pushed"); }));
    EXPECT_TRUE(tab->isEditingAddress());
    EXPECT_TRUE(hasFocus(*tab->addressField()));
    EXPECT_EQ(tab->addressField()->stringValue(), "half");
    typeText(" typed");
    ASSERT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == "half typed"; }));
    pressKey("Tab");
    EXPECT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == server.url("/hop4-pushed"); }));
}
