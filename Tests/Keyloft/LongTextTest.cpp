#include "Tests/Keyloft/AppDelegateTest.h"

#include <algorithm>

using namespace Platform;
using TestSupport::leastContentSize;
using TestSupport::nativeWindowSize;
using TestSupport::openedMenu;
using TestSupport::runUntil;

namespace {

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

const std::string underscored = "_a_ under_score__";
const std::string longTitle = repeated("wide ", 2000);
const std::string rightToLeft = repeated("שלום ", 2000);
const std::string emoji = repeated("👩‍👩‍👧‍👦🎉", 1000);
const std::string markup = "<b>bold</b> & &amp;";

/// Tests titles that are very long, are written from right to left, or contain characters that GTK could
/// interpret as mnemonics or markup.
class LongTextTest : public AppDelegateTest {
protected:
    void addBookmarks() {
        int number = 0;
        for (const auto& title : titles) {
            delegate->bookmarks()->add({title, url("https://page.test/" + std::to_string(++number))});
        }
    }

    const std::vector<std::string> titles = {underscored, longTitle, rightToLeft, emoji, markup};
};

} // namespace

TEST_F(LongTextTest, aMenuIsAtMostHalfAsWideAsTheScreen) {
    addBookmarks();
    const auto tab = launch();
    const auto menu = openedMenu(*tab->window(), "Bookmarks");
    EXPECT_LE(menu.width, TestSupport::screenSize().width / 2);
    // The menu items have the full titles. A long title is truncated only when it is drawn.
    ASSERT_EQ(menu.titles.size(), 1 + titles.size());
    EXPECT_EQ(menu.titles[0], "Add Bookmark");
    EXPECT_TRUE(std::equal(titles.begin(), titles.end(), menu.titles.begin() + 1));
    EXPECT_EQ(menu.isCut, (std::vector<bool>{false, false, true, true, true, false}));
    // The items of the `Menu` object also have the full titles.
    for (std::size_t i = 0; i < titles.size(); ++i) {
        EXPECT_EQ(delegate->bookmarksMenu()->items().at(i + 2)->title(), titles[i]);
    }
}

TEST_F(LongTextTest, noMenuIsWiderWhateverTheTabsAreCalled) {
    const auto first = launch();
    const auto tab = openPage("/page", first);
    first->window()->setTitle(rightToLeft);
    tab->window()->setTitle(longTitle);
    for (const char* title : {"Keyloft", "File", "Edit", "View", "History", "Bookmarks", "Window"}) {
        EXPECT_LE(openedMenu(*tab->window(), title).width, TestSupport::screenSize().width / 2) << title;
    }
}

TEST_F(LongTextTest, aMenuOfShortTextsIsAsWideAsTheyNeed) {
    const auto tab = launch();
    const auto menu = openedMenu(*tab->window(), "File");
    EXPECT_EQ(menu.titles, (std::vector<std::string>{"New Tab", "Open Location\u2026", "Close Tab"}));
    EXPECT_EQ(menu.isCut, std::vector<bool>(3, false));
    EXPECT_LT(menu.width, TestSupport::screenSize().width / 4);
}

TEST_F(LongTextTest, bookmarksWidenNothing) {
    const auto tab = launch();
    const Size before = nativeWindowSize(*tab->window());
    addBookmarks();
    TestSupport::waitForLayout(*tab->window());
    EXPECT_EQ(nativeWindowSize(*tab->window()), before);
    EXPECT_EQ(leastContentSize(*tab->window()), (Size{.width = 480, .height = 320}));
    EXPECT_EQ(TestSupport::boundsInContent(*tab->bookmarksBar()).width, 1100);
    const auto buttons = bookmarkButtons(*tab);
    for (std::size_t i = 0; i < titles.size(); ++i) {
        EXPECT_EQ(buttons.at(i)->title(), titles[i]);
    }
}

TEST_F(LongTextTest, aPagesTitleWidensNeitherTabNorWindow) {
    const auto first = launch();
    const auto tab = openPage("/page", first);
    const Size before = nativeWindowSize(*tab->window());
    for (const auto& title : titles) {
        tab->window()->setTitle(title);
        TestSupport::waitForLayout(*tab->window());
        EXPECT_EQ(nativeWindowSize(*tab->window()), before);
        EXPECT_EQ(leastContentSize(*tab->window()), (Size{.width = 480, .height = 320}));
        EXPECT_EQ(TestSupport::nativeTitle(*tab->window()), title);
        EXPECT_EQ(TestSupport::tabTitles(*tab->window()).back(), title);
    }
}

TEST_F(LongTextTest, aScriptsTextWidensNothingAndIsShownAsItStands) {
    const auto tab = launch();
    ASSERT_TRUE(loadPage(tab, "/page"));
    const Size before = nativeWindowSize(*tab->window());
    for (const std::string& text : {underscored, repeated("w", 10000), rightToLeft, emoji, markup}) {
        TestSupport::runScript(*tab->webView(), "alert('" + text + "')");
        ASSERT_TRUE(waitForSheet(tab));
        TestSupport::waitForLayout(*tab->window());
        EXPECT_EQ(TestSupport::shownSheet(*tab->window())->texts,
                  (std::vector<std::string>{"127.0.0.1", text}));
        EXPECT_EQ(nativeWindowSize(*tab->window()), before);
        EXPECT_EQ(leastContentSize(*tab->window()), (Size{.width = 480, .height = 320}));
        TestSupport::pressSheetButton(*tab->window(), "OK");
        ASSERT_TRUE(runUntil([&] { return !TestSupport::shownSheet(*tab->window()); }));
    }
}
