#include "Tests/Platform/WebKit/linux/WebViewFixture.h"

#include <algorithm>
#include <utility>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runPending;
using TestSupport::runUntil;

namespace {

class WebViewObservation : public WebViewTest {};

/// Fixture for tests that run once for each observable property.
class WebViewEveryObservation : public WebViewTest, public testing::WithParamInterface<WebView::Property> {
protected:
    /// Navigates so that each observable property changes at least once.
    void visitTwoPagesAndGoBack(WebView& view) {
        ASSERT_TRUE(loadPage(view, "/first"));
        ASSERT_TRUE(loadPage(view, "/second"));
        view.goBack();
        ASSERT_TRUE(waitForTitle(view, "/first"));
    }
};

} // namespace

TEST_F(WebViewObservation, aFreshViewHasNothing) {
    const auto view = makeView();
    EXPECT_EQ(view->url(), std::nullopt);
    EXPECT_EQ(view->title(), std::nullopt);
    EXPECT_FALSE(view->canGoBack());
    EXPECT_FALSE(view->canGoForward());
    EXPECT_EQ(view->estimatedProgress(), 0);
    EXPECT_FALSE(view->isLoading());
}

TEST_F(WebViewObservation, aLoadShowsItsURLAtOnceAndItsTitleWhenItIsThere) {
    const auto view = makeView();
    std::vector<std::string> told;
    const auto url = view->observe(Property::url, [&] { told.push_back("url " + urlOf(*view)); });
    const auto title =
        view->observe(Property::title, [&] { told.push_back("title " + view->title().value_or("-")); });
    const auto loading = view->observe(Property::isLoading,
                                       [&] { told.emplace_back(view->isLoading() ? "loading" : "loaded"); });
    EXPECT_TRUE(told.empty()) << "an observation does not call its handler at once";

    server.route("/page", HTTPResponse::page("A page"));
    view->load(request(server.url("/page")));
    EXPECT_EQ(told, (std::vector<std::string>{"loading", "url " + server.url("/page")}));
    ASSERT_TRUE(waitForTitle(*view, "A page"));
    EXPECT_EQ(told.size(), 4U);
    EXPECT_EQ(std::ranges::count(told, "loaded"), 1);
    EXPECT_EQ(std::ranges::count(told, "title A page"), 1);
    EXPECT_EQ(view->estimatedProgress(), 1);
}

TEST_F(WebViewObservation, aPageWithoutATitleHasNone) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/titled"));
    server.route("/plain", HTTPResponse::html("<p>no title"));
    view->load(request(server.url("/plain")));
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(view->title(), std::nullopt);
    EXPECT_EQ(urlOf(*view), server.url("/plain"));
}

TEST_F(WebViewObservation, aboutBlankIsAPageLikeAnyOther) {
    const auto view = makeView();
    view->load(request("about:blank"));
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(urlOf(*view), "about:blank");
}

TEST_F(WebViewObservation, historyIsToldOncePerChange) {
    const auto view = makeView();
    std::vector<std::pair<bool, bool>> told;
    const auto keep = [&] { told.emplace_back(view->canGoBack(), view->canGoForward()); };
    const auto back = view->observe(Property::canGoBack, keep);
    const auto forward = view->observe(Property::canGoForward, keep);

    ASSERT_TRUE(loadPage(*view, "/one"));
    EXPECT_TRUE(told.empty());
    ASSERT_TRUE(loadPage(*view, "/two"));
    ASSERT_TRUE(loadPage(*view, "/three"));
    EXPECT_EQ(std::exchange(told, {}), (std::vector<std::pair<bool, bool>>{{true, false}}));
    view->goBack();
    ASSERT_TRUE(waitForTitle(*view, "/two"));
    EXPECT_EQ(std::exchange(told, {}), (std::vector<std::pair<bool, bool>>{{true, true}}));
    view->goBack();
    ASSERT_TRUE(waitForTitle(*view, "/one"));
    EXPECT_EQ(std::exchange(told, {}), (std::vector<std::pair<bool, bool>>{{false, true}}));
    view->goBack();
    view->goForward();
    ASSERT_TRUE(waitForTitle(*view, "/two"));
    EXPECT_EQ(std::exchange(told, {}), (std::vector<std::pair<bool, bool>>{{true, true}}));
}

TEST_F(WebViewObservation, aPageThatPushesAStateCanGoBack) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/one"));
    run(*view, "history.pushState({}, '', '/pushed')");
    ASSERT_TRUE(runUntil([&] { return view->canGoBack(); }));
    EXPECT_TRUE(runUntil([&] { return urlOf(*view) == server.url("/pushed"); }));
    EXPECT_FALSE(view->isLoading());
}

TEST_F(WebViewObservation, observersAreCalledInTheirOrder) {
    const auto view = makeView();
    std::string order;
    auto first = view->observe(Property::url, [&] { order += "1"; });
    auto second = view->observe(Property::url, [&] { order += "2"; });
    auto third = view->observe(Property::url, [&] { order += "3"; });
    second = Observation();
    const auto fourth = view->observe(Property::url, [&] { order += "4"; });
    view->load(request(server.url("/")));
    EXPECT_EQ(order, "134");
}

TEST_F(WebViewObservation, anObserverMayEndItselfAndOthersAndBeginNewOnes) {
    const auto view = makeView();
    std::string order;
    Observation first;
    Observation second;
    Observation third;
    first = view->observe(Property::url, [&, kept = std::make_shared<std::string>("1")] {
        first.reset();
        second.reset();
        third = view->observe(Property::url, [&] { order += "3"; });
        order += *kept;
    });
    second = view->observe(Property::url, [&] { order += "2"; });
    const auto last = view->observe(Property::url, [&] { order += "4"; });
    view->load(request(server.url("/a")));
    EXPECT_EQ(order, "14");
    view->load(request(server.url("/b")));
    EXPECT_EQ(order, "1443");
}

TEST_F(WebViewObservation, aTokenMayOutliveItsView) {
    auto view = makeView();
    auto observation = view->observe(Property::url, [] {});
    view.reset();
    runPending();
    observation.reset();
    EXPECT_FALSE(observation);
}

TEST_P(WebViewEveryObservation, isCalledAfterTheChange) {
    const auto view = makeView();
    int calls = 0;
    const auto observation = view->observe(GetParam(), [&] { ++calls; });
    visitTwoPagesAndGoBack(*view);
    EXPECT_GT(calls, 0);
}

TEST_P(WebViewEveryObservation, mayLetTheViewGoFromInsideTheCall) {
    for (const char* path : {"/first", "/second"}) {
        server.route(path, HTTPResponse::page(path));
    }
    auto view = makeView();
    const std::weak_ptr<WebView> weak = view;
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    const auto observation = view->observe(GetParam(), [&] { view.reset(); });
    // Navigate only until the property changes, because the observer releases the view at that point.
    weak.lock()->load(request(server.url("/first")));
    if (GetParam() == Property::canGoBack || GetParam() == Property::canGoForward) {
        ASSERT_TRUE(waitForTitle(*view, "/first"));
        run(*view, "location = '/second'");
    }
    if (GetParam() == Property::canGoForward) {
        ASSERT_TRUE(waitForTitle(*view, "/second"));
        view->goBack();
    }
    EXPECT_TRUE(runUntil([&] { return weak.expired(); }));
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
}

INSTANTIATE_TEST_SUITE_P(Properties, WebViewEveryObservation,
                         testing::Values(WebView::Property::title, WebView::Property::url,
                                         WebView::Property::canGoBack, WebView::Property::canGoForward,
                                         WebView::Property::estimatedProgress, WebView::Property::isLoading),
                         [](const auto& info) -> std::string {
                             switch (info.param) {
                             case WebView::Property::title:
                                 return "title";
                             case WebView::Property::url:
                                 return "url";
                             case WebView::Property::canGoBack:
                                 return "canGoBack";
                             case WebView::Property::canGoForward:
                                 return "canGoForward";
                             case WebView::Property::estimatedProgress:
                                 return "estimatedProgress";
                             case WebView::Property::isLoading:
                                 return "isLoading";
                             }
                             return "unknown";
                         });
