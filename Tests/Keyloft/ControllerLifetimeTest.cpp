#include "Tests/Keyloft/BrowserTest.h"

#include <algorithm>
#include <functional>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

class ControllerLifetimeTest : public BrowserTest {
protected:
    /// Weak references to the objects that must be destroyed with a tab.
    struct Remains {
        explicit Remains(const Tab& tab)
            : controller(tab)
            , window(tab->window())
            , views{tab->webView(),
                    tab->backButton(),
                    tab->forwardButton(),
                    tab->reloadButton(),
                    tab->addressField(),
                    tab->searchField(),
                    tab->bookmarkButton(),
                    tab->bookmarksBar(),
                    tab->progressBar(),
                    tab->progressBar()->fill(),
                    tab->window()->contentView(),
                    tab->backButton()->superview()} {}

        bool areGone() const {
            return controller.expired() && window.expired() &&
                   std::ranges::all_of(views, [](const auto& view) { return view.expired(); });
        }

        std::weak_ptr<Controller> controller;
        std::weak_ptr<Window> window;
        std::vector<std::weak_ptr<View>> views;
    };

    /// Opens a tab and expects `close` to destroy all of its objects and to call `onClose` once.
    void expectEndBy(const std::function<void(Controller&)>& close) {
        auto tab = openTab();
        const auto erase = tab->onClose;
        int closed = 0;
        tab->onClose = [&closed, erase] {
            ++closed;
            erase();
        };
        const Remains remains(tab);
        close(*tab);
        tab.reset();
        EXPECT_TRUE(runUntil([&] { return remains.areGone(); }));
        EXPECT_EQ(closed, 1);
        EXPECT_TRUE(tabs.empty());
    }
};

} // namespace

TEST_F(ControllerLifetimeTest, aTabEndsHoweverItIsClosed) {
    expectEndBy([](Controller& tab) { tab.window()->close(); });
    expectEndBy([](Controller& tab) { tab.window()->perform(StandardAction::performClose, {}); });
    expectEndBy([](Controller& tab) { TestSupport::closeTab(*tab.window()); });
    expectEndBy([](Controller& tab) { TestSupport::closeNativeWindow(*tab.window()); });
    expectEndBy([](Controller& tab) {
        tab.window()->close();
        tab.window()->close();
    });
}

TEST_F(ControllerLifetimeTest, aTabEndsWhileItsPageLoads) {
    server.route("/held", heldResponse());
    expectEndBy([&](Controller& tab) {
        tab.load(serverURL("/held"));
        EXPECT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
        tab.window()->close();
    });
}

TEST_F(ControllerLifetimeTest, aTabEndsWithItsSheet) {
    expectEndBy([](Controller& tab) {
        tab.didFailNavigation(*tab.webView(),
                              {.domain = "Other", .code = 1, .localizedDescription = "x", .failingURL = {}});
        tab.window()->close();
    });
}

TEST_F(ControllerLifetimeTest, aTabMayEndInsideItsPagesOwnNews) {
    server.route("/", HTTPResponse::page("ending"));
    auto tab = openTab();
    const Remains remains(tab);
    const std::weak_ptr<Controller> weak = tab;
    auto observation = tab->webView()->observe(WebView::Property::title, [weak] {
        if (const auto tab = weak.lock()) {
            tab->window()->close();
        }
    });
    tab->load(serverURL("/"));
    tab.reset();
    EXPECT_TRUE(runUntil([&] { return remains.areGone(); }));
    EXPECT_TRUE(tabs.empty());
}

TEST_F(ControllerLifetimeTest, aTabThatWasNeverShownEnds) {
    Tab tab = Controller::create(store, nullptr);
    int closed = 0;
    tab->onClose = [&] { ++closed; };
    const Remains remains(tab);
    tab->window()->close();
    EXPECT_EQ(closed, 1);
    tab.reset();
    EXPECT_TRUE(runUntil([&] { return remains.areGone(); }));
}

TEST_F(ControllerLifetimeTest, aTabThatIsLetGoUnclosedEnds) {
    Tab tab = openTab();
    tab->onClose = nullptr;
    const Remains remains(tab);
    tabs.clear();
    tab.reset();
    EXPECT_TRUE(runUntil([&] { return remains.areGone(); }));
}

TEST_F(ControllerLifetimeTest, aTabEndsWhileItsPageMoves) {
    server.route("/", HTTPResponse::html(
                          "<title>moving</title><script>let n = 0; function step() { document.body.style"
                          ".background = ++n % 2 ? 'red' : 'blue'; requestAnimationFrame(step) }"
                          "onload = step</script>"));
    // Repeat the test to make it likely that a message about a painted frame is in transit when the tab
    // closes.
    for (int i = 0; i < 5; ++i) {
        expectEndBy([&](Controller& tab) {
            tab.load(serverURL("/"));
            EXPECT_TRUE(
                runUntil([&] { return tab.webView()->title() == "moving" && !tab.webView()->isLoading(); }));
            TestSupport::waitForLayout(*tab.window());
            tab.window()->close();
        });
    }
}

TEST_F(ControllerLifetimeTest, aClosedTabNoLongerFollowsPageAndBookmarks) {
    // Do not show the window, so that the page can still load after the window is closed.
    const Tab tab = Controller::create(store, nullptr);
    ASSERT_TRUE(loadPage(tab, "/page"));
    ASSERT_EQ(tab->window()->title(), "/page");
    const std::string address = tab->addressField()->stringValue();
    tab->window()->close();

    ASSERT_TRUE(loadPage(tab, "/later"));
    ASSERT_TRUE(tab->webView()->canGoBack());
    EXPECT_EQ(tab->webView()->url(), serverURL("/later"));
    EXPECT_EQ(tab->addressField()->stringValue(), address);
    EXPECT_EQ(tab->window()->title(), "/page");
    EXPECT_FALSE(tab->backButton()->isEnabled());

    store->add({"Added", url("https://added.test/")});
    EXPECT_TRUE(bookmarkButtons(*tab).empty());
}

TEST_F(ControllerLifetimeTest, closingOneTabLeavesTheOthersAsTheyAre) {
    const auto first = openTab();
    const auto second = openTab(first);
    const auto third = openTab(second);
    ASSERT_TRUE(loadPage(first, "/first"));
    second->window()->close();
    EXPECT_EQ(tabs, (std::vector<Tab>{first, third}));
    EXPECT_TRUE(TestSupport::shareNativeWindow(*first->window(), *third->window()));
    EXPECT_EQ(first->addressField()->stringValue(), server.url("/first"));
    EXPECT_TRUE(loadPage(third, "/third"));
}

TEST_F(ControllerLifetimeTest, closingTheNativeWindowClosesEveryTabInItsOrder) {
    const auto first = openTab();
    const auto second = openTab(first);
    const auto elsewhere = openTab();
    std::vector<int> order;
    first->onClose = [&, erase = first->onClose] {
        order.push_back(1);
        erase();
    };
    second->onClose = [&, erase = second->onClose] {
        order.push_back(2);
        erase();
    };
    TestSupport::closeNativeWindow(*second->window());
    EXPECT_TRUE(runUntil([&] { return tabs.size() == 1; }));
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
    EXPECT_EQ(tabs, std::vector<Tab>{elsewhere});
}
