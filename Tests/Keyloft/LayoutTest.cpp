#include "Keyloft/AppDelegate.h"
#include "Tests/Keyloft/BrowserTest.h"

#include <algorithm>
#include <cmath>
#include <span>

using namespace Platform;
using KeyloftBrowserKit::Bookmark;
using TestSupport::boundsInContent;
using TestSupport::contentFrame;
using TestSupport::HTTPResponse;
using TestSupport::leastContentSize;
using TestSupport::nativeWindowSize;
using TestSupport::resizeContent;
using TestSupport::runUntil;
using TestSupport::waitForLayout;

namespace {

constexpr Size usualSize{.width = 1100, .height = 760};
constexpr Size leastSize{.width = 480, .height = 320};

double right(const Rect& rect) { return rect.x + rect.width; }
double bottom(const Rect& rect) { return rect.y + rect.height; }
double middle(const Rect& rect) { return rect.y + (rect.height / 2); }

/// Views are positioned at whole points, so the centers of two views in a row may differ by half a point.
constexpr double halfAPoint = 0.5;

double greatestHeight(std::span<const Rect> rects) {
    return std::ranges::max(rects, {}, &Rect::height).height;
}

void expectRow(const Rect& row, double top, double width) {
    EXPECT_EQ(row.x, 0);
    EXPECT_EQ(row.y, top);
    EXPECT_EQ(row.width, width);
}

/// Opens tabs in windows that have the main menu, so that the content is laid out below a menu bar.
class LayoutTest : public BrowserTest {
public:
    LayoutTest(const LayoutTest&) = delete;
    LayoutTest& operator=(const LayoutTest&) = delete;
    ~LayoutTest() override { Application::shared().setMainMenu(nullptr); }

protected:
    LayoutTest() { delegate->applicationWillFinishLaunching(); }

    static Size contentSizeOf(const Tab& tab) {
        const Rect frame = contentFrame(*tab->window());
        return {.width = frame.width, .height = frame.height};
    }

    static std::vector<std::shared_ptr<View>> rowsOf(const Tab& tab) {
        return tab->backButton()->superview()->superview()->subviews();
    }

    static void expectToolbar(const Tab& tab, const Rect& row);
    static void expectBookmarksBar(const Tab& tab, const Rect& row);
    static void expectLayout(const Tab& tab, Size content);

    std::shared_ptr<Keyloft::AppDelegate> delegate = Keyloft::AppDelegate::create();
};

} // namespace

void LayoutTest::expectToolbar(const Tab& tab, const Rect& row) {
    const auto& controls = tab->backButton()->superview()->subviews();
    const std::vector<std::shared_ptr<View>> expected = {tab->backButton(),     tab->forwardButton(),
                                                         tab->reloadButton(),   tab->addressField(),
                                                         tab->bookmarkButton(), tab->searchField()};
    ASSERT_EQ(controls, expected);
    std::vector<Rect> bounds;
    for (const auto& control : controls) {
        bounds.push_back(boundsInContent(*control));
    }

    EXPECT_EQ(row.height, 8 + greatestHeight(bounds) + 6);
    const double center = row.y + 8 + ((row.height - 8 - 6) / 2);
    double position = 10;
    for (const Rect& rect : bounds) {
        EXPECT_EQ(rect.x, position);
        EXPECT_NEAR(middle(rect), center, halfAPoint);
        EXPECT_GT(rect.width, 0);
        EXPECT_GT(rect.height, 0);
        position = right(rect) + 6;
    }
    EXPECT_EQ(right(bounds[5]), row.width - 10);
    EXPECT_EQ(bounds[5].width, 220);
    for (const std::size_t button : {1, 2, 4}) {
        EXPECT_EQ(bounds[button].width, bounds[0].width);
    }
    // The address field fills the space that the other controls do not use, regardless of its text. Each of
    // the four buttons is at most 40 points wide.
    EXPECT_GT(bounds[3].width, row.width - 220 - (4 * 40) - (2 * 10) - (5 * 6) - 1);
}

void LayoutTest::expectBookmarksBar(const Tab& tab, const Rect& row) {
    const auto buttons = bookmarkButtons(*tab);
    ASSERT_FALSE(buttons.empty());
    std::vector<Rect> bounds;
    for (const auto& button : buttons) {
        bounds.push_back(boundsInContent(*button));
    }
    EXPECT_EQ(row.height, greatestHeight(bounds) + 4);
    double position = 8;
    for (const Rect& rect : bounds) {
        EXPECT_EQ(rect.x, position);
        EXPECT_NEAR(middle(rect), row.y + ((row.height - 4) / 2), halfAPoint);
        EXPECT_GT(rect.width, 0);
        position = right(rect) + 2;
    }
    const auto& spacer = tab->bookmarksBar()->arrangedSubviews().back();
    const Rect rest = boundsInContent(*spacer);
    EXPECT_EQ(rest.x, position);
    EXPECT_EQ(right(rest), row.width - 8);
}

void LayoutTest::expectLayout(const Tab& tab, Size content) {
    const Size whole = nativeWindowSize(*tab->window());
    const Rect frame = contentFrame(*tab->window());
    EXPECT_EQ(contentSizeOf(tab), content);
    EXPECT_EQ(frame.x, 0);
    EXPECT_GT(frame.y, 0);
    EXPECT_EQ(right(frame), whole.width);
    EXPECT_EQ(bottom(frame), whole.height);

    const auto rows = rowsOf(tab);
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[0], tab->backButton()->superview());
    EXPECT_EQ(rows[1], tab->bookmarksBar());
    EXPECT_EQ(rows[3], tab->progressBar());
    EXPECT_EQ(rows[4], tab->webView());
    std::vector<Rect> bounds;
    double top = 0;
    for (const auto& row : rows) {
        bounds.push_back(boundsInContent(*row));
        expectRow(bounds.back(), top, content.width);
        top = bottom(bounds.back());
    }
    EXPECT_EQ(top, content.height);
    EXPECT_EQ(bounds[2].height, 1);
    EXPECT_EQ(bounds[3].height, 2);
    EXPECT_GT(bounds[4].height, content.height / 2);
    expectToolbar(tab, bounds[0]);
    expectBookmarksBar(tab, bounds[1]);
}

TEST_F(LayoutTest, everyChildHasItsPlaceAtTheUsualAndTheLeastSize) {
    setBookmarks({{"One", url("https://one.test/")}, {"Another", url("https://another.test/")}});
    const auto tab = openTab();
    expectLayout(tab, usualSize);
    EXPECT_TRUE(resizeContent(*tab->window(), leastSize));
    expectLayout(tab, leastSize);
    EXPECT_TRUE(resizeContent(*tab->window(), {.width = 777, .height = 555}));
    expectLayout(tab, {.width = 777, .height = 555});
}

TEST_F(LayoutTest, theTabStripTakesRoomFromNoTabsRows) {
    setBookmarks({{"One", url("https://one.test/")}});
    const auto first = openTab();
    EXPECT_FALSE(TestSupport::isTabStripShown(*first->window()));
    const double alone = contentFrame(*first->window()).y;

    const auto second = openTab(first);
    EXPECT_TRUE(TestSupport::isTabStripShown(*first->window()));
    EXPECT_TRUE(resizeContent(*second->window(), usualSize));
    EXPECT_GT(contentFrame(*second->window()).y, alone);
    expectLayout(second, usualSize);
    EXPECT_TRUE(resizeContent(*second->window(), leastSize));
    expectLayout(second, leastSize);

    first->window()->makeKeyAndOrderFront();
    waitForLayout(*first->window());
    expectLayout(first, leastSize);
}

TEST_F(LayoutTest, theContentIsNeverSmallerThanTheLeastSize) {
    const auto tab = openTab();
    EXPECT_EQ(leastContentSize(*tab->window()), leastSize);
    EXPECT_FALSE(resizeContent(*tab->window(), {.width = 479, .height = 319}));
    EXPECT_EQ(contentSizeOf(tab), leastSize);
}

TEST_F(LayoutTest, aLongAddressDoesNotWidenTheWindow) {
    setBookmarks({{"One", url("https://one.test/")}});
    const auto tab = openTab();
    tab->addressField()->setStringValue("https://long.test/" + std::string(5000, 'x'));
    waitForLayout(*tab->window());
    expectLayout(tab, usualSize);
    EXPECT_EQ(leastContentSize(*tab->window()), leastSize);
    EXPECT_TRUE(resizeContent(*tab->window(), leastSize));
    expectLayout(tab, leastSize);
}

TEST_F(LayoutTest, manyBookmarksDoNotWidenTheWindow) {
    std::vector<Bookmark> bookmarks;
    for (int i = 0; i < 300; ++i) {
        bookmarks.push_back({"Page " + std::to_string(i), url("https://page.test/" + std::to_string(i))});
    }
    setBookmarks(bookmarks);
    const auto tab = openTab();
    EXPECT_EQ(contentSizeOf(tab), usualSize);
    EXPECT_EQ(leastContentSize(*tab->window()), leastSize);

    // Every button is laid out at its full width. Buttons that do not fit are clipped.
    const auto buttons = bookmarkButtons(*tab);
    ASSERT_EQ(buttons.size(), 300U);
    double position = 8;
    for (const auto& button : buttons) {
        const Rect rect = boundsInContent(*button);
        EXPECT_EQ(rect.x, position);
        position = right(rect) + 2;
    }
    EXPECT_GT(position, usualSize.width);
    EXPECT_EQ(boundsInContent(*tab->bookmarksBar()).width, usualSize.width);
    EXPECT_TRUE(resizeContent(*tab->window(), leastSize));
}

TEST_F(LayoutTest, aLongBookmarkTitleDoesNotWidenTheWindow) {
    setBookmarks({{std::string(10000, 'm'), url("https://long.test/")}, {"Next", url("https://next.test/")}});
    const auto tab = openTab();
    EXPECT_EQ(contentSizeOf(tab), usualSize);
    EXPECT_EQ(leastContentSize(*tab->window()), leastSize);
    EXPECT_EQ(boundsInContent(*tab->bookmarksBar()).width, usualSize.width);
    EXPECT_EQ(boundsInContent(*tab->webView()).width, usualSize.width);
    EXPECT_TRUE(resizeContent(*tab->window(), leastSize));
}

TEST_F(LayoutTest, aLongPageTitleDoesNotWidenTheWindow) {
    const auto first = openTab();
    const auto tab = openTab(first);
    const Size before = nativeWindowSize(*tab->window());
    // WebKitGTK may report only part of the title while the page is still loading, so wait only for the
    // beginning of the title.
    server.route("/", HTTPResponse::page(std::string(10000, 'm')));
    tab->load(serverURL("/"));
    const std::string wide(300, 'm');
    ASSERT_TRUE(runUntil([&] { return tab->window()->title().starts_with(wide); }));
    waitForLayout(*tab->window());
    EXPECT_EQ(nativeWindowSize(*tab->window()), before);
    EXPECT_EQ(leastContentSize(*tab->window()), leastSize);
    EXPECT_TRUE(resizeContent(*tab->window(), leastSize));
}

TEST_F(LayoutTest, theFillCoversItsShareOfTheProgressLine) {
    const auto tab = openTab();
    auto& bar = *tab->progressBar();
    bar.fill()->setHidden(false);
    const auto widthAt = [&](double progress) {
        tab->progressBar()->setProgress(progress);
        tab->progressBar()->setNeedsLayout();
        waitForLayout(*tab->window());
        const Rect line = boundsInContent(*tab->progressBar());
        const Rect fill = boundsInContent(*bar.fill());
        EXPECT_EQ(fill.x, 0);
        EXPECT_EQ(fill.y, line.y);
        EXPECT_EQ(fill.height, 2);
        return fill.width;
    };
    EXPECT_EQ(widthAt(0.25), 275);
    EXPECT_EQ(widthAt(1), 1100);
    EXPECT_EQ(widthAt(0.5), 550);
    EXPECT_EQ(widthAt(0), 0);
    // A progress above 1 is not clamped, so the fill is wider than the progress line.
    EXPECT_EQ(widthAt(1.5), 1650);
    EXPECT_EQ(boundsInContent(bar).width, usualSize.width);

    tab->progressBar()->setProgress(0.5);
    ASSERT_TRUE(resizeContent(*tab->window(), {.width = 600, .height = 400}));
    EXPECT_EQ(boundsInContent(*bar.fill()).width, 300);
}

TEST_F(LayoutTest, theProgressLineShowsExactlyWhileThePageLoads) {
    const auto tab = openTab();
    auto& bar = *tab->progressBar();
    EXPECT_TRUE(bar.fill()->isHidden());
    EXPECT_FALSE(TestSupport::isShown(*bar.fill()));

    server.route("/slow", heldResponse());
    tab->load(serverURL("/slow"));
    EXPECT_TRUE(bar.isActive());
    EXPECT_FALSE(bar.fill()->isHidden());
    ASSERT_TRUE(
        runUntil([&] { return tab->webView()->estimatedProgress() > 0 && server.count("/slow") == 1; }));
    waitForLayout(*tab->window());
    EXPECT_TRUE(TestSupport::isShown(*bar.fill()));
    EXPECT_EQ(bar.progress(), tab->webView()->estimatedProgress());
    EXPECT_EQ(boundsInContent(*bar.fill()).width, std::round(usualSize.width * bar.progress()));

    server.release("/slow");
    ASSERT_TRUE(waitForTitle(tab, "held"));
    EXPECT_FALSE(bar.isActive());
    EXPECT_TRUE(bar.fill()->isHidden());
    waitForLayout(*tab->window());
    EXPECT_FALSE(TestSupport::isShown(*bar.fill()));
    EXPECT_EQ(boundsInContent(bar).height, 2);
}
