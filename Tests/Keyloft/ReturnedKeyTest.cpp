#include "Tests/Keyloft/AppDelegateTest.h"

#include <string>

using TestSupport::hasFocus;
using TestSupport::HTTPResponse;
using TestSupport::pressKey;
using TestSupport::runUntil;

namespace {

/// Tests key events that a page returns unhandled.
class ReturnedKeyTest : public AppDelegateTest {
protected:
    Tab launchWith(const std::string& path, const HTTPResponse& response) {
        server.route(path, response);
        auto tab = launch();
        TestSupport::activate(*tab->window());
        tab->load(serverURL(path));
        EXPECT_TRUE(waitForTitle(tab, path));
        tab->window()->makeFirstResponder(tab->webView());
        EXPECT_TRUE(runUntil([&] { return hasFocus(*tab->webView()); }));
        return tab;
    }
};

} // namespace

TEST_F(ReturnedKeyTest, tabLeadsFromThePageToTheNextControl) {
    const auto tab = launchWith("/page", HTTPResponse::page("/page"));
    pressKey("Tab");
    ASSERT_TRUE(runUntil([&] { return hasFocus(*tab->reloadButton()); }));
    pressKey("Tab");
    EXPECT_TRUE(runUntil([&] { return hasFocus(*tab->addressField()); }));
    pressKey("shift+Tab");
    EXPECT_TRUE(runUntil([&] { return hasFocus(*tab->reloadButton()); }));
    pressKey("shift+Tab");
    EXPECT_TRUE(runUntil([&] { return hasFocus(*tab->webView()); }));
}

TEST_F(ReturnedKeyTest, theControlThatTabLeadsToIsSeenToHaveTheFocus) {
    const auto tab = launchWith("/page", HTTPResponse::page("/page"));
    TestSupport::hideFocus(*tab->window());
    pressKey("Tab");
    EXPECT_TRUE(runUntil([&] { return TestSupport::showsFocus(*tab->reloadButton()); }));
}

// The page handles events slowly, so it returns the Shift key event only after Tab has been pressed.
TEST_F(ReturnedKeyTest, aPageThatIsSlowToAnswerIsLeftByOneControlToo) {
    delegate->bookmarks()->add({"One", url("https://one.test/")});
    delegate->bookmarks()->add({"Two", url("https://two.test/")});
    const auto tab = launchWith(
        "/slow", HTTPResponse::html("<title>/slow</title><script>addEventListener('keydown', () => {"
                                    "for (const end = Date.now() + 100; Date.now() < end;); })</script>"));
    const auto bookmarks = bookmarkButtons(*tab);
    pressKey("shift+Tab");
    ASSERT_TRUE(runUntil([&] { return hasFocus(*bookmarks.at(1)); }));
    pressKey("shift+Tab");
    EXPECT_TRUE(runUntil([&] { return hasFocus(*bookmarks.at(0)); }));
}

TEST_F(ReturnedKeyTest, aKeyThatOpensAWindowIsNotTypedIntoIt) {
    server.route("/opened", HTTPResponse::html("<title>opened</title><script>let seen = ''\n"
                                               "addEventListener('keydown', e => "
                                               "document.title = seen += e.key)</script>"));
    const auto opener = launchWith(
        "/opener", HTTPResponse::html("<title>/opener</title><script>addEventListener('keydown', e => {"
                                      "if (e.key === 'x') open('/opened') })</script>"));
    pressKey("x");
    ASSERT_TRUE(runUntil([&] { return controllers().size() == 2; }));
    const auto opened = controllers()[1];
    ASSERT_TRUE(waitForTitle(opened, "opened"));
    EXPECT_EQ(TestSupport::shownText(*opened->addressField()), server.url("/opened"));
    opened->window()->makeFirstResponder(opened->webView());
    ASSERT_TRUE(runUntil([&] { return hasFocus(*opened->webView()); }));
    pressKey("y");
    EXPECT_TRUE(waitForTitle(opened, "y"));
}
