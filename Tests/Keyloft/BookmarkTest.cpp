#include "Tests/Keyloft/AppDelegateTest.h"

#include <algorithm>

using namespace Platform;
using KeyloftBrowserKit::Bookmark;
using KeyloftBrowserKit::BookmarkStore;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

using BookmarksTest = BrowserTest;

namespace {

const Image absentImage{"bookmark", "Bookmark this page"};
const Image presentImage{"bookmark.fill", "Remove bookmark"};

std::vector<std::string> titlesOf(const std::vector<std::shared_ptr<Button>>& buttons) {
    std::vector<std::string> titles;
    titles.reserve(buttons.size());
    for (const auto& button : buttons) {
        titles.push_back(button->title());
    }
    return titles;
}

using Titles = std::vector<std::string>;

} // namespace

TEST_F(BookmarksTest, togglingAddsThePageWithItsTitleAndTakesItOutAgain) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/page"));
    EXPECT_FALSE(tab->isBookmarked());
    EXPECT_EQ(tab->bookmarkButton()->image(), absentImage);

    tab->bookmarkButton()->sendAction();
    EXPECT_EQ(store->bookmarks(), (std::vector<Bookmark>{{"/page", serverURL("/page")}}));
    EXPECT_TRUE(tab->isBookmarked());
    EXPECT_EQ(tab->bookmarkButton()->image(), presentImage);
    EXPECT_EQ(tab->bookmarkButton()->toolTip(), "Bookmark this page");

    performFromMenu(*tab, BrowserAction::toggleBookmark);
    EXPECT_TRUE(store->bookmarks().empty());
    EXPECT_FALSE(tab->isBookmarked());
    EXPECT_EQ(tab->bookmarkButton()->image(), absentImage);
}

TEST_F(BookmarksTest, aPageWithoutTitleIsNamedAfterItsHost) {
    server.route("/", HTTPResponse::html("<p>No title"));
    const auto tab = openTab();
    ASSERT_TRUE(loadPath(tab, "/"));
    tab->toggleBookmark();
    EXPECT_EQ(store->bookmarks(), (std::vector<Bookmark>{{"127.0.0.1", serverURL("/")}}));
}

TEST_F(BookmarksTest, aPageWithNeitherTitleNorHostIsNamedAfterItsAddress) {
    const auto tab = openTab();
    tab->load(url("data:text/html,plain"));
    ASSERT_TRUE(runUntil([&] { return !tab->webView()->isLoading(); }));
    tab->toggleBookmark();
    EXPECT_EQ(store->bookmarks(),
              (std::vector<Bookmark>{{"data:text/html,plain", url("data:text/html,plain")}}));
}

TEST_F(BookmarksTest, togglingWithoutAPageDoesNothing) {
    const auto tab = openTab();
    tab->toggleBookmark();
    tab->bookmarkButton()->sendAction();
    EXPECT_TRUE(store->bookmarks().empty());
    EXPECT_EQ(tab->bookmarkButton()->image(), absentImage);
}

TEST_F(BookmarksTest, theStarFollowsThePage) {
    const auto tab = openTab();
    ASSERT_TRUE(loadPage(tab, "/kept"));
    tab->toggleBookmark();
    ASSERT_TRUE(loadPage(tab, "/other"));
    EXPECT_EQ(tab->bookmarkButton()->image(), absentImage);
    tab->goBack();
    ASSERT_TRUE(waitForTitle(tab, "/kept"));
    EXPECT_EQ(tab->bookmarkButton()->image(), presentImage);
    TestSupport::runScript(*tab->webView(), "location.hash = 'part'");
    EXPECT_TRUE(runUntil([&] { return tab->bookmarkButton()->image() == absentImage; }));
}

TEST_F(BookmarksTest, aChangeInOneTabShowsInEveryTab) {
    const auto first = openTab();
    const auto second = openTab(first);
    const auto elsewhere = openTab();
    ASSERT_TRUE(loadPage(first, "/page"));
    ASSERT_TRUE(loadPage(elsewhere, "/page"));
    first->toggleBookmark();
    for (const auto& tab : tabs) {
        EXPECT_EQ(titlesOf(bookmarkButtons(*tab)), Titles{"/page"});
    }
    EXPECT_EQ(first->bookmarkButton()->image(), presentImage);
    EXPECT_EQ(second->bookmarkButton()->image(), absentImage);
    EXPECT_EQ(elsewhere->bookmarkButton()->image(), presentImage);

    elsewhere->toggleBookmark();
    for (const auto& tab : tabs) {
        EXPECT_TRUE(bookmarkButtons(*tab).empty());
        EXPECT_EQ(tab->bookmarkButton()->image(), absentImage);
    }
}

TEST_F(BookmarksTest, theBarFollowsTheStoreAndNoOtherOne) {
    setBookmarks({{"One", url("https://one.test/")}, {"Two", url("https://two.test/")}});
    const auto tab = openTab();
    EXPECT_EQ(titlesOf(bookmarkButtons(*tab)), (Titles{"One", "Two"}));
    store->add({"Three", url("https://three.test/")});
    EXPECT_EQ(titlesOf(bookmarkButtons(*tab)), (Titles{"One", "Two", "Three"}));
    store->remove(url("https://one.test/"));
    EXPECT_EQ(titlesOf(bookmarkButtons(*tab)), (Titles{"Two", "Three"}));

    const auto before = bookmarkButtons(*tab);
    BookmarkStore other(URL::fromFilePath(directory / "other.json", false));
    other.add({"Other", url("https://other.test/")});
    EXPECT_EQ(bookmarkButtons(*tab), before);
}

TEST_F(BookmarksTest, theBarIsShownAnewAfterEachChange) {
    const auto tab = openTab();
    store->add({"Short", url("https://short.test/")});
    TestSupport::waitForLayout(*tab->window());
    const auto buttons = bookmarkButtons(*tab);
    ASSERT_EQ(buttons.size(), 1U);
    EXPECT_TRUE(TestSupport::isShown(*buttons[0]));
    EXPECT_EQ(TestSupport::boundsInContent(*buttons[0]).x, 8);
    store->remove(url("https://short.test/"));
    TestSupport::waitForLayout(*tab->window());
    EXPECT_FALSE(TestSupport::isShown(*buttons[0]));
}

TEST_F(BookmarksTest, everyBookmarkHasAButtonAndTheSpacerIsLast) {
    std::vector<Bookmark> bookmarks;
    for (int i = 0; i < 500; ++i) {
        bookmarks.push_back({"Page " + std::to_string(i), url("https://page.test/" + std::to_string(i))});
    }
    setBookmarks(bookmarks);
    const Tab tab = Controller::create(store, nullptr);
    const auto buttons = bookmarkButtons(*tab);
    ASSERT_EQ(buttons.size(), 500U);
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        EXPECT_EQ(buttons[i]->title(), bookmarks[i].title);
    }
    const auto& views = tab->bookmarksBar()->arrangedSubviews();
    EXPECT_EQ(views.size(), 501U);
    EXPECT_EQ(std::dynamic_pointer_cast<Control>(views.back()), nullptr);
    EXPECT_TRUE(views.back()->subviews().empty());
    store->add({"Last", url("https://last.test/")});
    EXPECT_EQ(tab->bookmarksBar()->arrangedSubviews().size(), 502U);
    EXPECT_EQ(std::dynamic_pointer_cast<Control>(tab->bookmarksBar()->arrangedSubviews().back()), nullptr);
}

TEST_F(BookmarksTest, aButtonStandsForItsBookmark) {
    setBookmarks({{"_One_ & <b>two</b>", url("https://one.test/?a=b#c")}});
    const auto tab = openTab();
    const auto button = bookmarkButtons(*tab).at(0);
    EXPECT_EQ(button->title(), "_One_ & <b>two</b>");
    EXPECT_EQ(button->toolTip(), "https://one.test/?a=b#c");
    EXPECT_EQ(button->representedURL(), url("https://one.test/?a=b#c"));
    EXPECT_EQ(button->action(), BrowserAction::openBookmark);
    EXPECT_EQ(button->bezelStyle(), Button::BezelStyle::recessed);
    EXPECT_FALSE(button->isBordered());
    EXPECT_EQ(button->font(), Font{12});
    EXPECT_EQ(button->image(), std::nullopt);
}

TEST_F(BookmarksTest, aTitleOfSeveralLinesIsShownInOne) {
    setBookmarks({{"One", url("https://one.test/")}, {"Two\nlines\r\nand more", url("https://two.test/")}});
    const auto tab = openTab();
    const auto buttons = bookmarkButtons(*tab);
    EXPECT_EQ(titlesOf(buttons), (Titles{"One", "Two lines and more"}));
    TestSupport::waitForLayout(*tab->window());
    EXPECT_EQ(TestSupport::boundsInContent(*buttons[1]).height,
              TestSupport::boundsInContent(*buttons[0]).height);
    EXPECT_EQ(store->bookmarks()[1].title, "Two\nlines\r\nand more");
}

TEST_F(BookmarksTest, aButtonLoadsItsBookmarkInItsOwnTab) {
    server.route("/kept", HTTPResponse::page("kept"));
    setBookmarks({{"Kept", serverURL("/kept")}});
    const auto first = openTab();
    const auto second = openTab(first);
    bookmarkButtons(*first).at(0)->sendAction();
    ASSERT_TRUE(waitForTitle(first, "kept"));
    EXPECT_EQ(first->webView()->url(), serverURL("/kept"));
    EXPECT_TRUE(second->isEmptyTab());
}

TEST_F(BookmarksTest, aClickOnAButtonLoadsItsBookmark) {
    server.route("/kept", HTTPResponse::page("kept"));
    setBookmarks({{"Kept", serverURL("/kept")}});
    const auto tab = openTab();
    TestSupport::activate(*tab->window());
    TestSupport::click(*bookmarkButtons(*tab).at(0));
    EXPECT_TRUE(waitForTitle(tab, "kept"));
    EXPECT_TRUE(TestSupport::hasFocus(*tab->webView()));
}

TEST_F(BookmarksTest, aMenuItemLoadsItsBookmark) {
    server.route("/kept", HTTPResponse::page("kept"));
    const auto tab = openTab();
    const auto item = MenuItem::create("Kept", BrowserAction::openBookmark);
    tab->perform(BrowserAction::openBookmark, {.menuItem = item.get()});
    tab->perform(BrowserAction::openBookmark, {});
    EXPECT_TRUE(tab->isEmptyTab());
    item->setRepresentedURL(serverURL("/kept"));
    tab->perform(BrowserAction::openBookmark, {.menuItem = item.get()});
    EXPECT_TRUE(waitForTitle(tab, "kept"));
}

TEST_F(BookmarksTest, aButtonThatItsOwnClickTakesAwayIsSafe) {
    const auto tab = openTab();
    store->add({"Gone", url("about:blank")});
    const std::weak_ptr<Button> button = bookmarkButtons(*tab).at(0);
    const auto observation =
        tab->webView()->observe(WebView::Property::url, [&] { store->remove(url("about:blank")); });
    button.lock()->sendAction();
    EXPECT_TRUE(bookmarkButtons(*tab).empty());
    EXPECT_TRUE(runUntil([&] { return button.expired(); }));
}

using BookmarksMenuTest = AppDelegateTest;

TEST_F(BookmarksMenuTest, showsATitleOfSeveralLinesInOne) {
    const auto tab = launch();
    delegate->bookmarks()->add({"Two\nlines", url("https://two.test/")});
    EXPECT_EQ(TestSupport::openedMenu(*tab->window(), "Bookmarks").titles,
              (Titles{"Add Bookmark", "Two lines"}));
    EXPECT_EQ(delegate->bookmarks()->bookmarks().at(0).title, "Two\nlines");
}

TEST_F(BookmarksMenuTest, isUpToDateEachTimeItOpens) {
    const auto tab = launch();
    const auto shownTitles = [&] { return TestSupport::openedMenu(*tab->window(), "Bookmarks").titles; };
    EXPECT_EQ(shownTitles(), Titles{"Add Bookmark"});
    delegate->bookmarks()->add({"One", url("https://one.test/")});
    EXPECT_EQ(shownTitles(), (Titles{"Add Bookmark", "One"}));
    ASSERT_TRUE(loadPage(tab, "/page"));
    tab->toggleBookmark();
    EXPECT_EQ(shownTitles(), (Titles{"Remove Bookmark", "One", "/page"}));
    delegate->bookmarks()->remove(url("https://one.test/"));
    EXPECT_EQ(shownTitles(), (Titles{"Remove Bookmark", "/page"}));
}
