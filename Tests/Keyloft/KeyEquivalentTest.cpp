#include "Platform/AppKit/Application.h"
#include "Tests/Keyloft/AppDelegateTest.h"

#include <functional>
#include <ostream>

using namespace Platform;
using TestSupport::hasFocus;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::shownText;
using TestSupport::typeText;

namespace {

/// The view that has the keyboard focus.
enum class Focus { page, addressField, searchField };

void PrintTo(Focus focus, std::ostream* stream) {
    switch (focus) {
    case Focus::page:
        *stream << "page";
        break;
    case Focus::addressField:
        *stream << "addressField";
        break;
    case Focus::searchField:
        *stream << "searchField";
        break;
    }
}

/// Presses real keys while the page, the address field or the search field has the focus.
class KeyEquivalentTest : public AppDelegateTest, public testing::WithParamInterface<Focus> {
protected:
    /// A page with a focused text field. The title of the page shows the characters of all keys that the page
    /// has received.
    static HTTPResponse listeningPage() {
        return HTTPResponse::html("<title>ready</title><input autofocus><script>let seen = ''\n"
                                  "addEventListener('keydown', e => { if (e.key.length == 1) "
                                  "document.title = seen += e.key })</script>");
    }

    Tab launchActive() {
        const auto tab = launch();
        TestSupport::activate(*tab->window());
        return tab;
    }

    [[nodiscard]] static bool moveFocus(const Tab& tab) {
        const std::shared_ptr<View> view = viewOf(tab);
        if (GetParam() == Focus::page) {
            tab->window()->makeFirstResponder(view);
        } else {
            std::static_pointer_cast<TextField>(view)->selectText();
        }
        return runUntil([&] { return hasFocus(*view); });
    }

    static std::shared_ptr<View> viewOf(const Tab& tab) {
        switch (GetParam()) {
        case Focus::page:
            return tab->webView();
        case Focus::addressField:
            return tab->addressField();
        case Focus::searchField:
            return tab->searchField();
        }
        return nullptr;
    }

    /// The typed characters that the focused view has received.
    static std::string typed(const Tab& tab) {
        if (GetParam() == Focus::page) {
            return tab->webView()->title().value_or("");
        }
        return shownText(*std::static_pointer_cast<TextField>(viewOf(tab)));
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(WithFocusIn, KeyEquivalentTest,
                         testing::Values(Focus::page, Focus::addressField, Focus::searchField),
                         testing::PrintToStringParamName());

TEST_P(KeyEquivalentTest, everyKeyDoesWhatItsItemSays) {
    const auto tab = launchActive();
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    Tab added;
    struct Case {
        const char* key;
        std::function<bool()> isDone;
        std::function<void()> undo = nullptr;
    };
    const std::vector<Case> cases = {
        // The key equivalent works even before the Bookmarks menu has been opened for the first time.
        {"ctrl+d", [&] { return tab->isBookmarked(); }},
        {"ctrl+d", [&] { return !tab->isBookmarked(); }},
        {"ctrl+r", [&] { return server.count("/two") == 2 && !tab->webView()->isLoading(); }},
        {"ctrl+bracketleft",
         [&] { return tab->webView()->title() == "/one" && tab->webView()->canGoForward(); }},
        {"ctrl+bracketright",
         [&] { return tab->webView()->title() == "/two" && !tab->webView()->isLoading(); }},
        {"ctrl+l",
         [&] {
             return hasFocus(*tab->addressField()) &&
                    TestSupport::selectedText(*tab->addressField()) == server.url("/two");
         }},
        {"ctrl+t",
         [&] {
             if (controllers().size() != 2) {
                 return false;
             }
             added = controllers()[1];
             return TestSupport::isSelectedTab(*added->window()) && hasFocus(*added->addressField());
         },
         [&] { tab->window()->makeKeyAndOrderFront(); }},
        {"ctrl+shift+bracketright", [&] { return TestSupport::isSelectedTab(*added->window()); },
         [&] { tab->window()->makeKeyAndOrderFront(); }},
        {"ctrl+shift+bracketleft", [&] { return TestSupport::isSelectedTab(*added->window()); },
         [&] { tab->window()->makeKeyAndOrderFront(); }},
        {"ctrl+m", [&] { return !TestSupport::isActive(*tab->window()); },
         [&] { TestSupport::activate(*tab->window()); }},
        {"ctrl+h", [&] { return !TestSupport::isActive(*tab->window()); },
         [&] { TestSupport::activate(*tab->window()); }},
        {"ctrl+w", [&] { return controllers() == std::vector<Tab>{added}; }},
    };
    for (const auto& [key, isDone, undo] : cases) {
        SCOPED_TRACE(key);
        ASSERT_TRUE(moveFocus(tab));
        pressKey(key);
        ASSERT_TRUE(runUntil([&isDone] { return isDone(); }));
        if (undo) {
            undo();
        }
    }
}

TEST_P(KeyEquivalentTest, theStopKeyStops) {
    server.route("/endless", unfinishedPage("endless"));
    const auto tab = launchActive();
    tab->load(serverURL("/endless"));
    ASSERT_TRUE(runUntil([&] { return tab->window()->title() == "endless"; }));
    ASSERT_TRUE(moveFocus(tab));
    pressKey("ctrl+period");
    EXPECT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
}

TEST_P(KeyEquivalentTest, aDisabledKeyDoesNothing) {
    server.route("/listening", listeningPage());
    const auto tab = launchActive();
    tab->load(serverURL("/listening"));
    ASSERT_TRUE(waitForTitle(tab, "ready"));
    ASSERT_TRUE(moveFocus(tab));
    for (const char* key : {"ctrl+bracketleft", "ctrl+bracketright", "ctrl+period", "ctrl+alt+h",
                            "ctrl+shift+bracketleft", "ctrl+shift+bracketright"}) {
        pressKey(key);
    }
    typeText("x");
    EXPECT_TRUE(runUntil([&] { return typed(tab) == "x"; })) << typed(tab);
    EXPECT_TRUE(TestSupport::isActive(*tab->window()));
    EXPECT_EQ(server.count("/listening"), 1U);
    EXPECT_EQ(controllers(), std::vector<Tab>{tab});
}

TEST_P(KeyEquivalentTest, theEditingKeysEditWhatHasTheFocus) {
    server.route("/",
                 HTTPResponse::html("<title>ready</title><input autofocus oninput='document.title = value'>"
                                    "<script>document.querySelector('input').focus()</script>"));
    const auto tab = launchActive();
    tab->load(serverURL("/"));
    ASSERT_TRUE(waitForTitle(tab, "ready"));
    ASSERT_TRUE(moveFocus(tab));
    const auto expectText = [&](const std::string& text) {
        EXPECT_TRUE(runUntil([&] { return typed(tab) == text; })) << typed(tab) << " for " << text;
    };
    typeText("ab");
    expectText("ab");
    pressKey("ctrl+a");
    pressKey("ctrl+x");
    expectText("");
    pressKey("ctrl+v");
    expectText("ab");
    pressKey("ctrl+v");
    expectText("abab");
    pressKey("ctrl+a");
    pressKey("ctrl+c");
    pressKey("End");
    pressKey("ctrl+v");
    expectText("abababab");
    // How much text a single Undo reverts depends on the field, so only expect that the text changes.
    pressKey("ctrl+z");
    EXPECT_TRUE(runUntil([&] { return typed(tab) != "abababab"; }));
    pressKey("ctrl+shift+z");
    expectText("abababab");
}

namespace {

/// Presses keys while the About panel has the keyboard focus.
class AboutPanelKeyTest : public AppDelegateTest {
protected:
    static constexpr const char* panel = "About Keyloft";

    void TearDown() override {
        ASSERT_TRUE(openPanel());
        pressKey("Escape");
        EXPECT_TRUE(runUntil([] { return TestSupport::activeTitle() != panel; }));
    }

    [[nodiscard]] static bool openPanel() {
        EXPECT_TRUE(sendAction(StandardAction::orderFrontStandardAboutPanel, nullptr, {}));
        return runUntil([] { return TestSupport::activeTitle() == panel; });
    }
};

} // namespace

TEST_F(AboutPanelKeyTest, doWhatTheirItemsSayInTheBrowsersWindow) {
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    ASSERT_TRUE(loadPage(tab, "/one"));
    ASSERT_TRUE(loadPage(tab, "/two"));
    ASSERT_TRUE(openPanel());
    pressKey("ctrl+d");
    EXPECT_TRUE(runUntil([&] { return tab->isBookmarked(); }));
    pressKey("ctrl+r");
    EXPECT_TRUE(runUntil([&] { return server.count("/two") == 2 && !tab->webView()->isLoading(); }));
    pressKey("ctrl+bracketleft");
    EXPECT_TRUE(waitForTitle(tab, "/one"));
    EXPECT_EQ(TestSupport::activeTitle(), panel);
    pressKey("ctrl+t");
    EXPECT_TRUE(runUntil([&] { return controllers().size() == 2; }));
    EXPECT_TRUE(runUntil([&] { return TestSupport::isActive(*tab->window()); }));
}

TEST_F(AboutPanelKeyTest, closeThePanelBeforeTheTab) {
    const auto tab = launch();
    const auto other = openPage("/other", tab);
    TestSupport::activate(*other->window());
    ASSERT_TRUE(openPanel());
    pressKey("ctrl+w");
    ASSERT_TRUE(runUntil([&] { return TestSupport::isActive(*other->window()); }));
    EXPECT_EQ(controllers(), (std::vector<Tab>{tab, other}));
    pressKey("ctrl+w");
    EXPECT_TRUE(runUntil([&] { return controllers() == std::vector<Tab>{tab}; }));
    // The About panel can be opened again.
    EXPECT_TRUE(openPanel());
}

TEST_F(AboutPanelKeyTest, ofWindowsDoNotReachTheOneBehindThePanel) {
    const auto tab = launch();
    const auto other = openPage("/other", tab);
    TestSupport::activate(*other->window());
    ASSERT_TRUE(openPanel());
    pressKey("ctrl+m");
    pressKey("ctrl+shift+bracketleft");
    pressKey("ctrl+d");
    ASSERT_TRUE(runUntil([&] { return other->isBookmarked(); }));
    EXPECT_TRUE(TestSupport::isSelectedTab(*other->window()));
    EXPECT_EQ(TestSupport::activeTitle(), panel);
}

TEST_F(AboutPanelKeyTest, workAfterTheWindowThatThePanelWasOpenedFromHasClosed) {
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    ASSERT_TRUE(openPanel());
    tab->window()->close();
    ASSERT_TRUE(runUntil([] { return TestSupport::activeTitle() == panel; }));
    pressKey("ctrl+t");
    ASSERT_TRUE(runUntil([&] { return controllers().size() == 1; }));
    EXPECT_TRUE(runUntil([&] { return TestSupport::isActive(*controllers().front()->window()); }));
}

namespace {

/// Tests which keys the application handles and which keys the page receives.
class PageKeyTest : public AppDelegateTest {};

} // namespace

TEST_F(PageKeyTest, thePageIsNotToldOfTheMenusKeys) {
    server.route("/", HTTPResponse::html("<title>ready</title><script>addEventListener('keydown', e => {"
                                         "if (e.key.length == 1) document.title += e.key })</script>"));
    const auto tab = launch();
    TestSupport::activate(*tab->window());
    tab->load(serverURL("/"));
    ASSERT_TRUE(waitForTitle(tab, "ready"));
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->webView()); }));
    pressKey("ctrl+d");
    ASSERT_TRUE(runUntil([&] { return tab->isBookmarked(); }));
    typeText("x");
    EXPECT_TRUE(runUntil([&] { return tab->webView()->title() == "readyx"; }));
}

TEST_F(PageKeyTest, keysOfOtherTabViewsGoToThePage) {
    server.route(
        "/", HTTPResponse::html("<title>ready</title><script>addEventListener('keydown', e => {"
                                "if (e.key.length > 2 && e.key != 'Control') document.title += ' ' + e.key "
                                "})</script>"));
    const auto first = launch();
    const auto second = openPage("/second", first);
    TestSupport::activate(*second->window());
    second->load(serverURL("/"));
    ASSERT_TRUE(waitForTitle(second, "ready"));
    ASSERT_TRUE(runUntil([&] { return hasFocus(*second->webView()); }));
    for (const char* key : {"ctrl+Home", "ctrl+End", "ctrl+Prior", "ctrl+Next", "ctrl+shift+Prior"}) {
        pressKey(key);
    }
    EXPECT_TRUE(runUntil([&] {
        return second->webView()->title() == "ready Home End PageUp PageDown Shift PageUp";
    })) << second->webView()->title().value_or("");
    EXPECT_TRUE(TestSupport::isSelectedTab(*second->window()));
    pressKey("ctrl+Tab");
    EXPECT_TRUE(runUntil([&] { return TestSupport::isSelectedTab(*first->window()); }));
    pressKey("ctrl+shift+Tab");
    EXPECT_TRUE(runUntil([&] { return TestSupport::isSelectedTab(*second->window()); }));
}
