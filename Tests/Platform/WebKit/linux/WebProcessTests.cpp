#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/WebProcesses.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;
using TestSupport::webProcesses;
using Ending = TestSupport::HTTPResponse::Ending;

namespace {

class WebProcess : public WebViewTest {
protected:
    void SetUp() override {
        view = makeView();
        window.emplace(*view);
    }

    void endProcess() { webkit_web_view_terminate_web_process(widgetOf(*view)); }

    /// Waits until the page was asked for so many times, and is there.
    bool waitForLoad(const std::string& path, std::size_t times) {
        return runUntil([&] { return server.count(path) == times; }) && waitForTitle(*view, path);
    }

    std::shared_ptr<WebView> view;
    std::optional<TestWindow> window;
};

} // namespace

TEST_F(WebProcess, aVisiblePageComesBackAtOnce) {
    window->show();
    ASSERT_TRUE(loadPage(*view, "/first"));
    ASSERT_TRUE(loadPage(*view, "/page"));
    std::vector<std::string> urls;
    const auto url = view->observe(Property::url, [&] { urls.push_back(urlOf(*view)); });
    endProcess();
    EXPECT_EQ(urlOf(*view), server.url("/page"));
    EXPECT_EQ(view->title(), "/page");
    EXPECT_FALSE(view->isLoading());
    EXPECT_TRUE(waitForLoad("/page", 2));
    EXPECT_EQ(urls, std::vector<std::string>()) << "the engine's empty URL is not passed on";
    EXPECT_TRUE(view->canGoBack());
    EXPECT_TRUE(navigation->failures.empty());
}

TEST_F(WebProcess, aHiddenPageComesBackWhenItIsNextVisible) {
    ASSERT_TRUE(loadPage(*view, "/page"));
    endProcess();
    runFor(0.3);
    EXPECT_EQ(server.count("/page"), 1U);
    EXPECT_EQ(urlOf(*view), server.url("/page"));
    EXPECT_EQ(view->title(), "/page");
    window->show();
    EXPECT_TRUE(waitForLoad("/page", 2));
    window->hide();
    window->show();
    runFor(0.2);
    EXPECT_EQ(server.count("/page"), 2U) << "it comes back once";
}

TEST_F(WebProcess, aSecondEndWithinAMinuteWaitsForTheUser) {
    window->show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    endProcess();
    ASSERT_TRUE(waitForLoad("/page", 2));
    endProcess();
    runFor(0.4);
    EXPECT_EQ(server.count("/page"), 2U);
    EXPECT_EQ(urlOf(*view), server.url("/page"));
    EXPECT_EQ(view->title(), "/page");
    EXPECT_FALSE(view->isLoading());
    view->reload();
    EXPECT_TRUE(waitForLoad("/page", 3));
}

TEST_F(WebProcess, anotherPageMayBeLoadedInstead) {
    ASSERT_TRUE(loadPage(*view, "/page"));
    endProcess();
    ASSERT_TRUE(loadPage(*view, "/other"));
    window->show();
    runFor(0.2);
    EXPECT_EQ(server.count("/page"), 1U);
    EXPECT_EQ(view->title(), "/other");
    view->goBack();
    EXPECT_TRUE(waitForTitle(*view, "/page"));
}

TEST_F(WebProcess, aPageWithoutATitleLosesTheOldOneWhenItComesBack) {
    window->show();
    server.route("/page", HTTPResponse::page("Titled"));
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForTitle(*view, "Titled"));
    server.route("/page", HTTPResponse::html("no title"));
    endProcess();
    EXPECT_EQ(view->title(), "Titled");
    EXPECT_TRUE(runUntil([&] { return server.count("/page") == 2 && !view->isLoading() && !view->title(); }));
}

TEST_F(WebProcess, aFirstLoadThatWasInterruptedIsBegunAgain) {
    window->show();
    server.route("/held", HTTPResponse::page("/held").withEnding(Ending::held));
    view->load(request(server.url("/held")));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    endProcess();
    EXPECT_FALSE(view->isLoading());
    EXPECT_EQ(urlOf(*view), server.url("/held"));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 2; }));
    server.release("/held");
    EXPECT_TRUE(waitForTitle(*view, "/held"));
    EXPECT_TRUE(navigation->failures.empty());
}

TEST_F(WebProcess, aLaterLoadThatWasInterruptedIsBegunAgain) {
    window->show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    server.route("/held", HTTPResponse::page("/held").withEnding(Ending::held));
    view->load(request(server.url("/held")));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    endProcess();
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 2; }));
    server.release("/held");
    EXPECT_TRUE(waitForTitle(*view, "/held"));
    EXPECT_TRUE(view->canGoBack());
}

TEST_F(WebProcess, aPageThatWasHalfThereComesBack) {
    window->show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    auto unfinished = HTTPResponse::page("/half");
    unfinished.body += std::string(5000, 'x');
    unfinished.ending = Ending::unfinished;
    server.route("/half", unfinished);
    view->load(request(server.url("/half")));
    ASSERT_TRUE(runUntil([&] { return view->canGoBack(); }));
    server.route("/half", HTTPResponse::page("/half"));
    endProcess();
    EXPECT_FALSE(view->isLoading());
    EXPECT_TRUE(waitForLoad("/half", 2));
}

TEST_F(WebProcess, anEmptyViewStaysEmpty) {
    window->show();
    ASSERT_TRUE(runUntil([] { return !webProcesses().empty(); }));
    endProcess();
    runFor(0.2);
    EXPECT_EQ(view->url(), std::nullopt);
    EXPECT_TRUE(loadPage(*view, "/page"));
}

TEST_F(WebProcess, theViewMayBeLetGoWhenItEnded) {
    window->show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    endProcess();
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    window.reset();
    view.reset();
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
    EXPECT_EQ(server.count("/page"), 1U);
}

TEST_F(WebProcess, isStartedForAnEmptyViewOnceItIsShown) {
    EXPECT_TRUE(webProcesses().empty());
    int calls = 0;
    std::vector<Observation> observations;
    for (const auto property : {Property::title, Property::url, Property::canGoBack, Property::canGoForward,
                                Property::estimatedProgress, Property::isLoading})
        observations.push_back(view->observe(property, [&] { ++calls; }));
    window->show();
    EXPECT_TRUE(runUntil([] { return webProcesses().size() == 1; }));
    runFor(0.2);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(view->url(), std::nullopt);
    ASSERT_TRUE(loadPage(*view, "/page"));
    EXPECT_EQ(webProcesses().size(), 1U);
    EXPECT_FALSE(view->canGoBack());
}

TEST_F(WebProcess, isNotStartedForAViewThatIsNotShown) {
    runFor(0.2);
    EXPECT_TRUE(webProcesses().empty());
}
