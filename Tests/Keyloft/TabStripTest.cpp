#include "Tests/Keyloft/AppDelegateTest.h"
#include "Tests/Support/AccessibilityTree.h"

#include <algorithm>

using TestSupport::runUntil;
using TestSupport::shareNativeWindow;
using TestSupport::tabTitles;
using Titles = std::vector<std::string>;

namespace {

/// Tests pointer interaction with the tab strip, under a window manager.
class TabStripTest : public AppDelegateTest {
protected:
    /// Opens the pages in tabs of one window and brings the window to the front. The last tab is selected.
    std::vector<Tab> openTabs(const std::vector<std::string>& paths) {
        std::vector<Tab> tabs;
        for (const auto& path : paths) {
            tabs.push_back(openPage(path, tabs.empty() ? nullptr : tabs.back()));
        }
        TestSupport::activate(*tabs.back()->window());
        waitForTabs(tabs.back());
        return tabs;
    }

    /// Waits until the dragged tab is visible in a window other than the window of `neighbour`.
    [[nodiscard]] static bool waitForOwnWindow(const Tab& tab, const Tab& neighbour) {
        return runUntil([&] {
            return tab->window()->isVisible() && !shareNativeWindow(*tab->window(), *neighbour->window());
        });
    }

    /// Waits until the tab strip has stopped moving. `tab` must be selected.
    static void waitForTabs(const Tab& tab) {
        TestSupport::ScreenPoint last;
        EXPECT_TRUE(runUntil([&] {
            TestSupport::waitForLayout(*tab->window());
            const auto now = TestSupport::tabOnScreen(*tab->window());
            return std::exchange(last, now) == now;
        }));
    }
};

} // namespace

TEST_F(TabStripTest, itsButtonOpensABlankTab) {
    const auto tabs = openTabs({"/one", "/two"});
    TestSupport::clickAt(TestSupport::newTabButtonOnScreen(*tabs[0]->window()));
    ASSERT_TRUE(runUntil([&] { return controllers().size() == 3; }));
    EXPECT_TRUE(controllers()[2]->isEmptyTab());
    EXPECT_TRUE(runUntil([&] { return TestSupport::hasFocus(*controllers()[2]->addressField()); }));
    EXPECT_EQ(tabTitles(*tabs[0]->window()), (Titles{"/one", "/two", "New Tab"}));
}

TEST_F(TabStripTest, aClickSelectsATabAndItsButtonClosesIt) {
    const auto tabs = openTabs({"/one", "/two", "/three"});
    TestSupport::clickAt(TestSupport::tabOnScreen(*tabs[0]->window()));
    ASSERT_TRUE(runUntil([&] { return TestSupport::isSelectedTab(*tabs[0]->window()); }));
    EXPECT_EQ(TestSupport::nativeTitle(*tabs[0]->window()), "/one");
    TestSupport::clickAt(TestSupport::tabCloseButtonOnScreen(*tabs[0]->window()));
    EXPECT_TRUE(runUntil([&] { return controllers() == std::vector<Tab>{tabs[1], tabs[2]}; }));
    EXPECT_EQ(tabTitles(*tabs[1]->window()), (Titles{"/two", "/three"}));
}

TEST_F(TabStripTest, aMiddleClickClosesATabThatIsNotSelected) {
    const auto tabs = openTabs({"/one", "/two", "/three"});
    TestSupport::clickAt(TestSupport::tabOnScreen(*tabs[0]->window()), TestSupport::PointerButton::middle);
    EXPECT_TRUE(runUntil([&] { return controllers() == std::vector<Tab>{tabs[1], tabs[2]}; }));
    EXPECT_TRUE(TestSupport::isSelectedTab(*tabs[2]->window()));
}

TEST_F(TabStripTest, aTabIsDraggedToAnotherPlace) {
    const auto tabs = openTabs({"/one", "/two", "/three"});
    TestSupport::drag(TestSupport::tabOnScreen(*tabs[0]->window()),
                      TestSupport::tabOnScreen(*tabs[2]->window()));
    EXPECT_TRUE(runUntil([&] { return tabTitles(*tabs[0]->window()) == Titles{"/two", "/three", "/one"}; }));
    EXPECT_TRUE(TestSupport::isSelectedTab(*tabs[0]->window()));
    EXPECT_EQ(controllers(), tabs);
}

TEST_F(TabStripTest, aTabIsDraggedOutIntoAWindowOfItsOwnAndBack) {
    const auto tabs = openTabs({"/one", "/two", "/three"});
    const auto loaded = server.count("/three");
    TestSupport::drag(TestSupport::tabOnScreen(*tabs[2]->window()), TestSupport::bareDesktop);
    ASSERT_TRUE(waitForOwnWindow(tabs[2], tabs[0]));
    EXPECT_EQ(tabTitles(*tabs[2]->window()), Titles{"/three"});
    EXPECT_EQ(tabTitles(*tabs[0]->window()), (Titles{"/one", "/two"}));
    EXPECT_EQ(TestSupport::nativeTitle(*tabs[2]->window()), "/three");

    const auto moved = TestSupport::accessibleObjects("/three");
    EXPECT_TRUE(std::ranges::any_of(
        moved, [](const auto& object) { return object.role == "tab" && object.isSelected; }));

    // The tab strip is hidden while the window has only one tab, so open a second tab before dragging the
    // first one.
    const auto beside = openPage("/beside", tabs[2]);
    TestSupport::activate(*beside->window());
    waitForTabs(beside);
    TestSupport::drag(TestSupport::tabOnScreen(*tabs[2]->window()),
                      TestSupport::tabOnScreen(*tabs[1]->window()));
    ASSERT_TRUE(runUntil([&] { return shareNativeWindow(*tabs[0]->window(), *tabs[2]->window()); }));
    EXPECT_EQ(tabTitles(*beside->window()), Titles{"/beside"});
    EXPECT_EQ(tabTitles(*tabs[0]->window()).size(), 3U);
    EXPECT_EQ(server.count("/three"), loaded);
    EXPECT_EQ(controllers(), (std::vector<Tab>{tabs[0], tabs[1], tabs[2], beside}));
}

TEST_F(TabStripTest, aPageThatIsDraggedOutKeepsItsFieldsTextAndGoesOn) {
    const auto tabs = openTabs({"/one", "/two"});
    tabs[1]->focusAddressBar();
    ASSERT_TRUE(runUntil([&] { return TestSupport::hasFocus(*tabs[1]->addressField()); }));
    TestSupport::typeText("half typed");
    ASSERT_TRUE(runUntil([&] { return tabs[1]->addressField()->stringValue() == "half typed"; }));
    TestSupport::runScript(*tabs[1]->webView(), "window.kept = 'kept'");
    TestSupport::drag(TestSupport::tabOnScreen(*tabs[1]->window()), TestSupport::bareDesktop);
    ASSERT_TRUE(waitForOwnWindow(tabs[1], tabs[0]));
    TestSupport::runScript(*tabs[1]->webView(), "document.title = window.kept");
    EXPECT_TRUE(runUntil([&] { return tabs[1]->window()->title() == "kept"; }));
    EXPECT_TRUE(tabs[1]->isEditingAddress());
    EXPECT_EQ(TestSupport::shownText(*tabs[1]->addressField()), "half typed");
}
