#include "Platform/AppKit/Alert.h"
#include "Tests/Keyloft/AppDelegateTest.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/WebProcesses.h"

#include <string>
#include <vector>

using namespace Platform;
using TestSupport::clickSheetButton;
using TestSupport::hasFocus;
using TestSupport::hasSheetFocus;
using TestSupport::HTTPResponse;
using TestSupport::isSelectedTab;
using TestSupport::needsAttention;
using TestSupport::present;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::shownSheet;
using TestSupport::typeText;

namespace {

/// Tests sheets opened by real pages, using real key presses and clicks, under a window manager.
class SheetTest : public AppDelegateTest {
protected:
    /// Opens a page whose function ask() calls confirm(). The title of the page lists all answers.
    Tab openAsking(const Tab& beside = nullptr) {
        server.route("/asking", HTTPResponse::html("<title>asking</title><script>const answers = [];"
                                                   "function ask(text) { setTimeout(() => {"
                                                   "    answers.push(confirm(text));"
                                                   "    document.title = answers.join(' ') }) }</script>"));
        auto tab = delegate->openTab(serverURL("/asking"), beside ? beside->window() : nullptr, nullptr);
        EXPECT_TRUE(waitForTitle(tab, "asking"));
        return tab;
    }

    static void ask(const Tab& tab, const std::string& text = "Really?") {
        TestSupport::runScript(*tab->webView(), "ask('" + text + "')");
    }

    /// Moves the focus to the address field with Ctrl+L and types `text`.
    [[nodiscard]] static bool typeAddress(const Tab& tab, const std::string& text) {
        pressKey("ctrl+l");
        if (!runUntil([&] { return hasFocus(*tab->addressField()); })) {
            return false;
        }
        typeText(text);
        return runUntil([&] { return tab->addressField()->stringValue() == text; });
    }

    [[nodiscard]] static bool waitForText(const Tab& tab, const std::string& text) {
        return runUntil([&] {
            const auto shown = shownSheet(*tab->window());
            return shown && shown->texts.at(1) == text;
        });
    }

    static void expectInContent(const Rect& frame, const Window& window, Size content) {
        EXPECT_GE(frame.x, 0) << window.title();
        EXPECT_GE(frame.y, 0);
        EXPECT_LE(frame.x + frame.width, content.width);
        EXPECT_LE(frame.y + frame.height, content.height);
    }
};

} // namespace

TEST_F(SheetTest, otherTabsAndWindowsStayUsable) {
    const auto asking = openAsking();
    const auto beside = openPage("/beside", asking);
    const auto elsewhere = openPage("/elsewhere");
    asking->window()->makeKeyAndOrderFront();
    TestSupport::activate(*asking->window());
    ask(asking);
    ASSERT_TRUE(waitForSheet(asking));

    pressKey("ctrl+shift+bracketright");
    ASSERT_TRUE(runUntil([&] { return isSelectedTab(*beside->window()); }));
    server.route("/typed", HTTPResponse::page("typed"));
    ASSERT_TRUE(typeAddress(beside, server.url("/typed")));
    pressKey("Return");
    EXPECT_TRUE(waitForTitle(beside, "typed"));

    TestSupport::activate(*elsewhere->window());
    ASSERT_TRUE(typeAddress(elsewhere, server.url("/typed")));
    pressKey("Return");
    EXPECT_TRUE(waitForTitle(elsewhere, "typed"));

    EXPECT_EQ(asking->webView()->title(), "asking");
    TestSupport::activate(*beside->window());
    pressKey("ctrl+shift+bracketleft");
    ASSERT_TRUE(
        runUntil([&] { return isSelectedTab(*asking->window()) && hasSheetFocus(*asking->window()); }));
    clickSheetButton(*asking->window(), "OK");
    EXPECT_TRUE(waitForTitle(asking, "true"));
}

TEST_F(SheetTest, onAHiddenTabWaitsMarksItAndNeverSelectsIt) {
    const auto asking = openAsking();
    const auto beside = openPage("/beside", asking);
    TestSupport::activate(*beside->window());
    EXPECT_FALSE(needsAttention(*asking->window()));
    ask(asking);
    ASSERT_TRUE(waitForSheet(asking));
    EXPECT_TRUE(needsAttention(*asking->window()));
    EXPECT_TRUE(isSelectedTab(*beside->window()));
    EXPECT_FALSE(shownSheet(*beside->window()));
    EXPECT_TRUE(hasFocus(*beside->webView()));

    // Key presses are sent to the selected tab, not to the sheet of the hidden tab.
    pressKey("Return");
    pressKey("Escape");
    ASSERT_TRUE(typeAddress(beside, "typed"));
    EXPECT_EQ(asking->webView()->title(), "asking");

    TestSupport::selectTab(*asking->window());
    EXPECT_FALSE(needsAttention(*asking->window()));
    ASSERT_TRUE(runUntil([&] { return hasSheetFocus(*asking->window()); }));
    pressKey("Escape");
    EXPECT_TRUE(waitForTitle(asking, "false"));
    EXPECT_FALSE(needsAttention(*asking->window()));
}

TEST_F(SheetTest, aLoadErrorAndAPanelOfOnePageWaitForEachOther) {
    const auto asking = openAsking();
    TestSupport::activate(*asking->window());
    asking->load(url("http://no-such-host.invalid/"));
    ASSERT_TRUE(waitForSheet(asking));
    ask(asking);
    // The confirm() sheet must not be shown until the load error sheet is closed. Load another page first, to
    // give confirm() time to be called.
    ASSERT_TRUE(loadPage(openPage("/beside"), "/meanwhile"));
    TestSupport::activate(*asking->window());
    EXPECT_EQ(present(shownSheet(*asking->window())).texts.at(0), "Keyloft can't open the page");
    clickSheetButton(*asking->window(), "OK");
    ASSERT_TRUE(runUntil([&] {
        const auto shown = shownSheet(*asking->window());
        return shown && shown->texts.at(0) == "127.0.0.1";
    }));
    EXPECT_TRUE(runUntil([&] { return hasSheetFocus(*asking->window()); }));
    pressKey("Return");
    EXPECT_TRUE(waitForTitle(asking, "true"));
}

TEST_F(SheetTest, closingItsTabByKeyAnswersThePageWithNo) {
    server.route("/told", HTTPResponse::page("told"));
    // The page sends the answer to the server, because the tab is already closed when confirm() returns.
    server.route("/telling", HTTPResponse::html("<title>telling</title><script>function ask() {"
                                                "setTimeout(() => { const answer = confirm('Really?');"
                                                "const told = new XMLHttpRequest();"
                                                "told.open('GET', '/told?' + answer, false); told.send() })"
                                                "}</script>"));
    auto telling = delegate->openTab(serverURL("/telling"), nullptr, nullptr);
    ASSERT_TRUE(waitForTitle(telling, "telling"));
    const auto beside = openPage("/beside", telling);
    TestSupport::selectTab(*telling->window());
    TestSupport::activate(*telling->window());
    // Keep a reference to the view, so that the page is not destroyed when its tab closes.
    const auto view = telling->webView();
    TestSupport::runScript(*view, "ask()");
    ASSERT_TRUE(waitForSheet(telling));
    pressKey("ctrl+w");
    ASSERT_TRUE(runUntil([&] { return controllers() == std::vector<Tab>{beside}; }));
    telling.reset();
    ASSERT_TRUE(runUntil([&] { return server.count("/told") == 1; }));
    EXPECT_EQ(server.requests("/told").at(0).query, "false");
    EXPECT_TRUE(loadPage(beside, "/after"));
    EXPECT_EQ(server.count("/told"), 1U);
}

TEST_F(SheetTest, aPageThatAlertsForeverCanBeClosed) {
    server.route("/forever",
                 HTTPResponse::html("<title>forever</title><script>onload = () => setTimeout("
                                    "() => { for (let n = 1;; ++n) alert('Number ' + n) })</script>"));
    const auto beside = openPage("/beside");
    const auto before = TestSupport::webProcesses();
    for (const bool byKey : {true, false}) {
        auto forever = delegate->openTab(serverURL("/forever"), beside->window(), nullptr);
        TestSupport::activate(*forever->window());
        for (int number = 1; number <= 3; ++number) {
            ASSERT_TRUE(waitForText(forever, "Number " + std::to_string(number)));
            ASSERT_TRUE(runUntil([&] { return hasSheetFocus(*forever->window()); }));
            pressKey("Return");
        }
        ASSERT_TRUE(waitForText(forever, "Number 4"));
        const std::weak_ptr<WebView> view = forever->webView();
        if (byKey) {
            pressKey("ctrl+w");
        } else {
            TestSupport::closeTab(*forever->window());
        }
        forever.reset();
        ASSERT_TRUE(runUntil([&] { return controllers() == std::vector<Tab>{beside}; }));
        EXPECT_TRUE(runUntil([&] { return view.expired(); }));
        EXPECT_TRUE(loadPage(beside, "/after"));
    }
    // The scripts must not keep running after their tabs are closed. WebKitGTK lets them run for ten more
    // seconds, so wait longer than usual.
    EXPECT_TRUE(
        runUntil([&] { return TestSupport::webProcesses().size() <= before.size(); }, TestSupport::patience));
}

TEST_F(SheetTest, aLongTextKeepsTheButtonsInReachAtTheLeastSizeToo) {
    std::string sentences;
    while (sentences.size() < 10000) {
        sentences += "All of this is to be read. ";
    }
    struct Case {
        const char* name;
        std::string heading;
        std::string text;
    };
    const Case cases[] = {
        {"one word", "127.0.0.1", std::string(10000, 'w')},
        {"sentences", "127.0.0.1", sentences},
        {"lines", "127.0.0.1", std::string(5000, '\n') + std::string(5000, 'i')},
        {"the longest host", std::string(253, 'h'), sentences},
    };
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    for (const Size size : {Size{.width = 480, .height = 320}, Size{.width = 1100, .height = 760}}) {
        ASSERT_TRUE(TestSupport::resizeContent(*tab->window(), size));
        for (const auto& [name, heading, text] : cases) {
            SCOPED_TRACE(std::string(name) + " at " + std::to_string(size.height));
            std::vector<std::size_t> answers;
            tab->window()->beginSheet(
                Alert{.messageText = heading, .informativeText = text, .buttonTitles = {"OK", "Cancel"}},
                [&](std::size_t button) { answers.push_back(button); });
            TestSupport::waitForLayout(*tab->window());
            EXPECT_EQ(TestSupport::leastContentSize(*tab->window()), (Size{.width = 480, .height = 320}));
            expectInContent(TestSupport::sheetButtonFrame(*tab->window(), "OK"), *tab->window(), size);
            expectInContent(TestSupport::sheetButtonFrame(*tab->window(), "Cancel"), *tab->window(), size);
            clickSheetButton(*tab->window(), "Cancel");
            ASSERT_TRUE(runUntil([&] { return !answers.empty(); }));
            EXPECT_EQ(answers, std::vector<std::size_t>{1});
        }
    }
}

TEST_F(SheetTest, theKeyboardGoesRoundInsideOfIt) {
    const auto asking = openAsking();
    openPage("/beside", asking);
    TestSupport::selectTab(*asking->window());
    TestSupport::activate(*asking->window());
    ask(asking);
    ASSERT_TRUE(runUntil([&] { return hasSheetFocus(*asking->window()); }));
    // Each key press moves the focus to the other button of the sheet. After eight key presses, the default
    // button has the focus again.
    for (const char* key : {"Tab", "Tab", "Tab", "Tab", "shift+Tab", "shift+Tab", "shift+Tab", "shift+Tab"}) {
        pressKey(key);
        pressKey("Control_L"); // gives the previous key press time to take effect
        TestSupport::waitForLayout(*asking->window());
        EXPECT_TRUE(hasSheetFocus(*asking->window())) << key;
    }
    pressKey("Tab");
    pressKey("space");
    EXPECT_TRUE(waitForTitle(asking, "false"));
}

TEST_F(SheetTest, halfTypedTextOutlivesIt) {
    const auto asking = openAsking();
    TestSupport::activate(*asking->window());
    ASSERT_TRUE(typeAddress(asking, "half"));
    ask(asking);
    ASSERT_TRUE(runUntil([&] { return hasSheetFocus(*asking->window()); }));
    EXPECT_TRUE(asking->isEditingAddress());
    EXPECT_EQ(asking->addressField()->stringValue(), "half");
    clickSheetButton(*asking->window(), "OK");
    ASSERT_TRUE(waitForTitle(asking, "true"));
    ASSERT_TRUE(runUntil([&] { return hasFocus(*asking->addressField()); }));
    EXPECT_TRUE(asking->isEditingAddress());
    typeText(" typed");
    EXPECT_TRUE(runUntil([&] { return asking->addressField()->stringValue() == "half typed"; }))
        << asking->addressField()->stringValue();
}
