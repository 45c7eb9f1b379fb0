#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::present;
using TestSupport::pressKey;
using TestSupport::pressSheetButton;
using TestSupport::runUntil;
using TestSupport::ShownSheet;
using TestSupport::shownSheet;

namespace {

class ScriptPanelTest : public BrowserTest {
protected:
    /// Opens a page that calls confirm() and shows the answer in its title. Waits for the sheet.
    [[nodiscard]] Tab openAsking() {
        server.route(
            "/", HTTPResponse::html("<script>onload = () => setTimeout(() => {"
                                    "document.title = 'answered ' + confirm('Really\\nso?') })</script>"));
        const auto tab = openTab();
        tab->load(serverURL("/"));
        EXPECT_TRUE(waitForSheet(tab));
        return tab;
    }

    /// Opens a confirm panel that was not requested by a page. Appends the user's answer to `answers`.
    static void ask(const Tab& tab, const std::string& message, std::vector<bool>& answers) {
        tab->runJavaScriptConfirmPanel(*tab->webView(), message, {},
                                       [&answers](bool answer) { answers.push_back(answer); });
    }
};

} // namespace

TEST_F(ScriptPanelTest, anAlertBearsTheHostAndHoldsThePage) {
    server.route("/", HTTPResponse::html("<script>onload = () => setTimeout(() => {"
                                         "alert('Hello'); document.title = 'after' })</script>"));
    const auto tab = openTab();
    tab->load(serverURL("/"));
    ASSERT_TRUE(waitForSheet(tab));
    EXPECT_EQ(shownSheet(*tab->window()), (ShownSheet{.texts = {"127.0.0.1", "Hello"}, .buttons = {"OK"}}));
    EXPECT_NE(tab->webView()->title(), "after");
    pressSheetButton(*tab->window(), "OK");
    EXPECT_TRUE(waitForTitle(tab, "after"));
    EXPECT_EQ(shownSheet(*tab->window()), std::nullopt);
}

TEST_F(ScriptPanelTest, aConfirmationAnsweredWithOKIsTrue) {
    const auto tab = openAsking();
    EXPECT_EQ(shownSheet(*tab->window()),
              (ShownSheet{.texts = {"127.0.0.1", "Really\nso?"}, .buttons = {"OK", "Cancel"}}));
    pressSheetButton(*tab->window(), "OK");
    EXPECT_TRUE(waitForTitle(tab, "answered true"));
}

TEST_F(ScriptPanelTest, aConfirmationAnsweredWithCancelIsFalse) {
    const auto tab = openAsking();
    pressSheetButton(*tab->window(), "Cancel");
    EXPECT_TRUE(waitForTitle(tab, "answered false"));
}

TEST_F(ScriptPanelTest, returnAnswersWithOKAndEscapeWithCancel) {
    const auto tab = openTab();
    TestSupport::activate(*tab->window());
    std::vector<bool> answers;
    ask(tab, "One", answers);
    TestSupport::waitForLayout(*tab->window());
    pressKey("Return");
    ASSERT_TRUE(runUntil([&] { return answers.size() == 1; }));
    ask(tab, "Two", answers);
    TestSupport::waitForLayout(*tab->window());
    pressKey("Escape");
    ASSERT_TRUE(runUntil([&] { return answers.size() == 2; }));
    EXPECT_EQ(answers, (std::vector<bool>{true, false}));
}

TEST_F(ScriptPanelTest, withoutAHostThePanelsKindIsTheHeading) {
    const auto tab = openTab();
    int dismissed = 0;
    tab->runJavaScriptAlertPanel(*tab->webView(), "Hello", {}, [&] { ++dismissed; });
    EXPECT_EQ(shownSheet(*tab->window()), (ShownSheet{.texts = {"Alert", "Hello"}, .buttons = {"OK"}}));
    pressSheetButton(*tab->window(), "OK");
    EXPECT_EQ(dismissed, 1);

    std::vector<bool> answers;
    ask(tab, "Really?", answers);
    EXPECT_EQ(shownSheet(*tab->window()),
              (ShownSheet{.texts = {"Confirm", "Really?"}, .buttons = {"OK", "Cancel"}}));
    pressSheetButton(*tab->window(), "Cancel");
    EXPECT_EQ(answers, std::vector<bool>{false});

    tab->runJavaScriptAlertPanel(*tab->webView(), "", {.url = url("data:text/html,x")}, [] {});
    EXPECT_EQ(present(shownSheet(*tab->window())).texts.at(0), "Alert");
    pressSheetButton(*tab->window(), "OK");
    tab->runJavaScriptAlertPanel(*tab->webView(), "", {.url = url("http://speaker.test:81/x")}, [] {});
    EXPECT_EQ(present(shownSheet(*tab->window())).texts.at(0), "speaker.test");
    pressSheetButton(*tab->window(), "OK");
}

TEST_F(ScriptPanelTest, aPageWithoutAHostBearsThePanelsKind) {
    TestSupport::writeContents(directory / "page.html", "<title>file</title>");
    const auto tab = openTab();
    for (const std::string& address :
         {std::string("about:blank"), std::string("data:text/html,<title>data</title>"),
          "file://" + (directory / "page.html")}) {
        SCOPED_TRACE(address);
        tab->load(url(address));
        ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
        for (const auto& [script, heading] :
             {std::pair("alert('Hello')", "Alert"), std::pair("confirm('Really?')", "Confirm")}) {
            TestSupport::runScript(*tab->webView(), script);
            ASSERT_TRUE(waitForSheet(tab));
            EXPECT_EQ(present(shownSheet(*tab->window())).texts.at(0), heading);
            pressSheetButton(*tab->window(), "OK");
        }
    }
}

TEST_F(ScriptPanelTest, messagesAreShownAsTheyStand) {
    const auto tab = openTab();
    const std::string message = "<b>_Bold_</b> &amp; \u00e9 " + std::string(5000, 'm');
    tab->runJavaScriptAlertPanel(*tab->webView(), message, {}, [] {});
    EXPECT_EQ(present(shownSheet(*tab->window())).texts.at(1), message);
    TestSupport::waitForLayout(*tab->window());
    EXPECT_EQ(TestSupport::leastContentSize(*tab->window()), (Size{.width = 480, .height = 320}));
}

TEST_F(ScriptPanelTest, closingTheTabGivesTheSafeAnswerOnce) {
    auto tab = openTab();
    std::vector<bool> answers;
    int dismissed = 0;
    ask(tab, "One", answers);
    ask(tab, "Two", answers);
    tab->runJavaScriptAlertPanel(*tab->webView(), "Three", {}, [&] { ++dismissed; });
    EXPECT_TRUE(answers.empty());
    tab->window()->close();
    tab.reset();
    TestSupport::runPending();
    EXPECT_EQ(answers, (std::vector<bool>{false, false}));
    EXPECT_EQ(dismissed, 1);
}

TEST_F(ScriptPanelTest, closingTheTabOfAPageThatWaitsIsSafe) {
    auto tab = openAsking();
    const std::weak_ptr<WebView> view = tab->webView();
    tab->window()->close();
    tab.reset();
    EXPECT_TRUE(runUntil([&] { return view.expired(); }));
}

TEST_F(ScriptPanelTest, aPanelOfAHiddenTabWaitsThere) {
    const auto first = openTab();
    const auto second = openTab(first);
    std::vector<bool> answers;
    ask(first, "Hidden", answers);
    TestSupport::runPending();
    EXPECT_TRUE(TestSupport::isSelectedTab(*second->window()));
    EXPECT_FALSE(shownSheet(*second->window()));
    EXPECT_TRUE(answers.empty());
    first->window()->makeKeyAndOrderFront();
    TestSupport::waitForLayout(*first->window());
    pressSheetButton(*first->window(), "OK");
    EXPECT_EQ(answers, std::vector<bool>{true});
}

TEST_F(ScriptPanelTest, theFocusReturnsWhereItWas) {
    const auto tab = openTab();
    TestSupport::activate(*tab->window());
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(TestSupport::hasFocus(*tab->webView()));
    std::vector<bool> answers;
    ask(tab, "Really?", answers);
    TestSupport::waitForLayout(*tab->window());
    EXPECT_FALSE(TestSupport::hasFocus(*tab->webView()));
    pressSheetButton(*tab->window(), "OK");
    EXPECT_TRUE(runUntil([&] { return TestSupport::hasFocus(*tab->webView()); }));
}
