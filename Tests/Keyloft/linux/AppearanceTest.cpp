#include "Platform/AppKit/Alert.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Tests/Keyloft/BrowserTest.h"

#include <gtk/gtk.h>

using namespace Platform;
using KeyloftBrowserKit::Bookmark;
using TestSupport::boundsInContent;
using TestSupport::resizeContent;
using TestSupport::runUntil;
using TestSupport::waitForLayout;

namespace {

/// Tests the layout of windows with larger text and with a right-to-left locale.
class AppearanceTest : public BrowserTest {
public:
    AppearanceTest(const AppearanceTest&) = delete;
    AppearanceTest& operator=(const AppearanceTest&) = delete;
    ~AppearanceTest() override {
        setTextScale(1);
        gtk_widget_set_default_direction(GTK_TEXT_DIR_LTR);
    }

protected:
    AppearanceTest() = default;

    static void setTextScale(int scale) {
        g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", scale * 96 * 1024, nullptr);
    }

    static int lineHeight(TextField& field) {
        graphene_rect_t cursor;
        auto* text = GTK_TEXT(gtk_editable_get_delegate(GTK_EDITABLE(field.native().widget.get())));
        gtk_text_compute_cursor_extents(text, 0, &cursor, nullptr);
        return static_cast<int>(cursor.size.height);
    }

    static Size sizeOf(View& view) {
        const Rect bounds = boundsInContent(view);
        return {.width = bounds.width, .height = bounds.height};
    }

    static std::vector<Size> sizesOf(const Tab& tab) {
        waitForLayout(*tab->window());
        return {sizeOf(*tab->addressField()), sizeOf(*tab->searchField()), sizeOf(*bookmarkButtons(*tab)[0])};
    }

    static double right(View& view) {
        const Rect bounds = boundsInContent(view);
        return bounds.x + bounds.width;
    }

    static void showSheet(const Tab& tab, int words) {
        std::string text;
        for (int i = 0; i < words; ++i) {
            text += "wordy ";
        }
        tab->window()->beginSheet({.messageText = "The heading of the sheet", .informativeText = text},
                                  nullptr);
        ASSERT_TRUE(waitForSheet(tab));
        waitForLayout(*tab->window());
    }
};

} // namespace

TEST_F(AppearanceTest, controlsFollowTheTextScaleWhileTheyAreShown) {
    setBookmarks({{"Bookmark", url("https://one.test/")}});
    const auto tab = openTab();
    const auto usual = sizesOf(tab);
    EXPECT_EQ(usual[1].width, 220);
    const int line = lineHeight(*tab->addressField());
    setTextScale(2);
    ASSERT_TRUE(runUntil([&] { return sizesOf(tab)[2].width > usual[2].width * 1.6; }));
    const auto large = sizesOf(tab);
    EXPECT_GT(large[2].height, usual[2].height);
    EXPECT_EQ(lineHeight(*tab->addressField()), 2 * line);
    EXPECT_GT(large[1].width, 220 * 1.4);
    EXPECT_GT(large[0].width, large[1].width);
    setTextScale(1);
    EXPECT_TRUE(runUntil([&] { return sizesOf(tab) == usual; }));
}

TEST_F(AppearanceTest, everyControlFitsANarrowWindowWhenTheTextIsTwiceAsLarge) {
    setTextScale(2);
    const auto tab = openTab();
    ASSERT_TRUE(resizeContent(*tab->window(), {.width = 480, .height = 400}));
    EXPECT_EQ(right(*tab->searchField()), 480 - 10);
    showSheet(tab, 120);
    const Rect button = TestSupport::sheetButtonFrame(*tab->window(), "OK");
    EXPECT_GT(button.x, 0);
    EXPECT_LT(button.x + button.width, 480);
    EXPECT_LT(button.y + button.height, 400);
    TestSupport::pressSheetButton(*tab->window(), "OK");
}

TEST_F(AppearanceTest, contentThatDoesNotFitIsClippedOnTheLeftIfTextRunsFromTheRight) {
    gtk_widget_set_default_direction(GTK_TEXT_DIR_RTL);
    std::vector<Bookmark> bookmarks;
    for (int i = 0; i < 40; ++i) {
        bookmarks.push_back({"Page " + std::to_string(i), url("https://page.test/" + std::to_string(i))});
    }
    setBookmarks(bookmarks);
    const auto tab = openTab();
    waitForLayout(*tab->window());
    EXPECT_EQ(right(*tab->backButton()), 1100 - 10);
    EXPECT_EQ(boundsInContent(*tab->searchField()).x, 10);
    const auto buttons = bookmarkButtons(*tab);
    EXPECT_EQ(right(*buttons.front()), 1100 - 8);
    EXPECT_LT(boundsInContent(*buttons.back()).x, 0);
}
