#include "Tests/Keyloft/BrowserTest.h"

using namespace Platform;
using TestSupport::hasFocus;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;
using TestSupport::shownText;
using TestSupport::typeText;

namespace {

/// Edits the address field with real key presses and clicks, under a window manager.
class AddressEditingTest : public BrowserTest {
protected:
    Tab openActiveTab(const Tab& beside = nullptr) {
        auto tab = openTab(beside);
        TestSupport::activate(*tab->window());
        return tab;
    }

    /// Replaces the contents of the address field by typing `text`. Returns false if the field does not
    /// receive `text` in time.
    [[nodiscard]] static bool typeAddress(const Tab& tab, const std::string& text) {
        tab->focusAddressBar();
        if (!runUntil([&] { return hasFocus(*tab->addressField()); })) {
            return false;
        }
        typeText(text);
        return runUntil([&] { return tab->addressField()->stringValue() == text; });
    }
};

} // namespace

TEST_F(AddressEditingTest, beginsWithTheFirstTypedCharacter) {
    const auto tab = openActiveTab();
    tab->focusAddressBar();
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->addressField()); }));
    tab->addressField()->setStringValue("set by the program");
    EXPECT_FALSE(tab->isEditingAddress());
    typeText("x");
    ASSERT_TRUE(runUntil([&] { return tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), shownText(*tab->addressField()));
}

TEST_F(AddressEditingTest, openLocationSelectsTheWholeAddress) {
    const auto tab = openActiveTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(hasFocus(*tab->webView()));
    performFromMenu(*tab, BrowserAction::focusAddressBar);
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->addressField()); }));
    EXPECT_EQ(TestSupport::selectedText(*tab->addressField()), server.url("/page"));
    EXPECT_FALSE(tab->isEditingAddress());
    typeText("x");
    EXPECT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == "x"; }));
}

TEST_F(AddressEditingTest, typedTextOutlivesARedirectAndTabRestoresTheAddress) {
    server.route("/from", HTTPResponse::redirect("/to").withEnding(HTTPResponse::Ending::held));
    server.route("/to", HTTPResponse::page("to"));
    const auto tab = openActiveTab();
    tab->load(serverURL("/from"));
    ASSERT_TRUE(runUntil([&] { return server.count("/from") == 1; }));
    ASSERT_TRUE(typeAddress(tab, "half typed"));
    EXPECT_TRUE(tab->isEditingAddress());
    server.release("/from");
    ASSERT_TRUE(waitForTitle(tab, "to"));
    EXPECT_EQ(tab->webView()->url(), serverURL("/to"));
    EXPECT_EQ(tab->addressField()->stringValue(), "half typed");
    EXPECT_EQ(shownText(*tab->addressField()), "half typed");
    // The window title is updated even while the user is editing the address.
    EXPECT_EQ(tab->window()->title(), "to");

    pressKey("Tab");
    ASSERT_TRUE(runUntil([&] { return !tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/to"));
    EXPECT_EQ(shownText(*tab->addressField()), server.url("/to"));
    EXPECT_FALSE(hasFocus(*tab->addressField()));
}

TEST_F(AddressEditingTest, aClickElsewhereRestoresTheAddress) {
    const auto tab = openActiveTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(typeAddress(tab, "half typed"));
    TestSupport::click(*tab->webView());
    ASSERT_TRUE(runUntil([&] { return !tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/page"));

    ASSERT_TRUE(typeAddress(tab, "again"));
    TestSupport::click(*tab->searchField());
    ASSERT_TRUE(runUntil([&] { return !tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/page"));
    EXPECT_TRUE(hasFocus(*tab->searchField()));
}

TEST_F(AddressEditingTest, escapeRestoresTheAddress) {
    const auto tab = openActiveTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(typeAddress(tab, "half typed"));
    pressKey("Escape");
    ASSERT_TRUE(runUntil([&] { return !tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/page"));
    EXPECT_EQ(shownText(*tab->addressField()), server.url("/page"));
}

TEST_F(AddressEditingTest, leavingWithoutAPageEmptiesTheField) {
    const auto tab = openActiveTab();
    ASSERT_TRUE(typeAddress(tab, "half typed"));
    pressKey("Tab");
    ASSERT_TRUE(runUntil([&] { return !tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), "");
    EXPECT_TRUE(tab->isEmptyTab());
}

TEST_F(AddressEditingTest, returnNavigates) {
    server.route("/typed", HTTPResponse::page("typed"));
    const auto tab = openActiveTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(typeAddress(tab, server.url("/typed")));
    EXPECT_TRUE(tab->isEditingAddress());
    pressKey("Return");
    ASSERT_TRUE(waitForTitle(tab, "typed"));
    EXPECT_FALSE(tab->isEditingAddress());
    EXPECT_TRUE(hasFocus(*tab->webView()));
    EXPECT_EQ(tab->addressField()->stringValue(), server.url("/typed"));
    EXPECT_EQ(server.count("/typed"), 1U);
}

TEST_F(AddressEditingTest, returnOnBlankTextEndsTheEditAndNothingElse) {
    const auto tab = openActiveTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(typeAddress(tab, "  "));
    pressKey("Return");
    ASSERT_TRUE(runUntil([&] { return !tab->isEditingAddress(); }));
    EXPECT_EQ(tab->addressField()->stringValue(), "  ");
    EXPECT_FALSE(tab->webView()->isLoading());
    EXPECT_EQ(server.count("/page"), 1U);
    // When the field loses the focus, the page's address is restored, even if the user has typed nothing
    // since pressing Return.
    pressKey("Tab");
    EXPECT_TRUE(runUntil([&] { return tab->addressField()->stringValue() == server.url("/page"); }));
}

TEST_F(AddressEditingTest, returnInTheSearchFieldSearches) {
    const TestSupport::TrafficRedirection redirection(server.port());
    const auto tab = openActiveTab();
    TestSupport::click(*tab->searchField());
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->searchField()); }));
    typeText("a b");
    ASSERT_TRUE(runUntil([&] { return tab->searchField()->stringValue() == "a b"; }));
    // Typing in the search field does not start a load or an edit of the address field.
    EXPECT_TRUE(tab->isEmptyTab());
    EXPECT_FALSE(tab->isEditingAddress());
    std::vector<URL> visited;
    const auto observation = tab->webView()->observe(WebView::Property::url, [&] {
        if (const auto now = tab->webView()->url()) {
            visited.push_back(*now);
        }
    });
    pressKey("Return");
    ASSERT_TRUE(runUntil([&] { return !visited.empty(); }));
    EXPECT_EQ(visited.front(), url("https://duckduckgo.com/?q=a%20b"));
}

TEST_F(AddressEditingTest, anotherTabNeitherEndsNorBeginsAnEdit) {
    const auto first = openActiveTab();
    ASSERT_TRUE(loadPage(first, "/first"));
    const auto second = openActiveTab(first);
    first->window()->makeKeyAndOrderFront();
    TestSupport::waitForLayout(*first->window());
    ASSERT_TRUE(typeAddress(first, "half typed"));
    second->window()->makeKeyAndOrderFront();
    TestSupport::waitForLayout(*second->window());
    EXPECT_TRUE(first->isEditingAddress());
    EXPECT_FALSE(second->isEditingAddress());
    first->window()->makeKeyAndOrderFront();
    TestSupport::waitForLayout(*first->window());
    EXPECT_TRUE(first->isEditingAddress());
    EXPECT_EQ(first->addressField()->stringValue(), "half typed");
    EXPECT_TRUE(hasFocus(*first->addressField()));
    pressKey("Escape");
    EXPECT_TRUE(runUntil([&] { return first->addressField()->stringValue() == server.url("/first"); }));
}

TEST_F(AddressEditingTest, anotherWindowDoesNotEndAnEdit) {
    const auto tab = openActiveTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_TRUE(typeAddress(tab, "half typed"));
    {
        const TestSupport::OtherWindow other;
        EXPECT_TRUE(runUntil([&] { return !TestSupport::isActive(*tab->window()); }));
        EXPECT_TRUE(tab->isEditingAddress());
    }
    TestSupport::activate(*tab->window());
    EXPECT_TRUE(tab->isEditingAddress());
    EXPECT_EQ(tab->addressField()->stringValue(), "half typed");
}

TEST_F(AddressEditingTest, theReloadButtonLeavesTheTypedTextForATabWithoutAPage) {
    server.route("/typed", HTTPResponse::page("typed"));
    const auto tab = openActiveTab();
    ASSERT_TRUE(typeAddress(tab, server.url("/typed")));
    TestSupport::click(*tab->reloadButton());
    EXPECT_TRUE(waitForTitle(tab, "typed"));
}
