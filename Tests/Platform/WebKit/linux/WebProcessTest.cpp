#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/WebProcesses.h"

#include <cstddef>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;
using TestSupport::webProcesses;
using Ending = TestSupport::HTTPResponse::Ending;

namespace {

class WebProcess : public WebViewTest {
protected:
    void SetUp() override {
        window.reset();
        view = makeView();
        window.emplace(*view);
    }

    void endProcess() { webkit_web_view_terminate_web_process(widgetOf(*view)); }

    /// Waits until `path` has been requested `times` times and the page is loaded.
    bool waitForLoad(const std::string& path, std::size_t times) {
        return runUntil([&] { return server.count(path) == times; }) && waitForTitle(*view, path);
    }

    struct Shown {
        std::shared_ptr<WebView> view;
        TestWindow window{*view};
    };

    /// Shows a new view in its own window and loads a page from the server in it.
    std::unique_ptr<Shown> showPage(const std::string& path) {
        auto shown = std::make_unique<Shown>(makeView());
        shown->window.show();
        EXPECT_TRUE(loadPage(*shown->view, path));
        return shown;
    }

    /// Lets the page in `view` open a window, waits until the child page is loaded, and returns the child's
    /// view.
    std::shared_ptr<WebView> openChild(const HTTPResponse& page = HTTPResponse::page("/child")) {
        server.route("/child", page);
        std::shared_ptr<WebView> child;
        ui->onCreate = [&](const auto& configuration) { return child = makeView(configuration); };
        run(*view, "window.open('/child')");
        EXPECT_TRUE(runUntil([&] { return child && child->title() == "/child"; }));
        ui->onCreate = nullptr;
        return child;
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
    EXPECT_EQ(urls, std::vector<std::string>()) << "WebKitGTK's empty URL is not reported";
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
    EXPECT_EQ(server.count("/page"), 2U) << "the page reloads once";
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

TEST_F(WebProcess, aLoadThatWasInterruptedTwiceIsBegunAgainByAReload) {
    window->show();
    server.route("/held", HTTPResponse::page("/held").withEnding(Ending::held));
    view->load(request(server.url("/held")));
    for (const auto times : {1U, 2U}) {
        ASSERT_TRUE(runUntil([&] { return server.count("/held") == times; }));
        endProcess();
    }
    runFor(0.3);
    EXPECT_EQ(server.count("/held"), 2U);
    EXPECT_EQ(urlOf(*view), server.url("/held"));
    view->reload();
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 3; }));
    server.release("/held");
    EXPECT_TRUE(waitForTitle(*view, "/held"));
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
                                Property::estimatedProgress, Property::isLoading}) {
        observations.push_back(view->observe(property, [&] { ++calls; }));
    }
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

TEST_F(WebProcess, areStartedOneAfterTheOtherForPagesOutOfSight) {
    std::vector<std::shared_ptr<WebView>> views = {view, makeView(), makeView()};
    for (std::size_t i = 0; i < views.size(); ++i) {
        server.route("/" + std::to_string(i), HTTPResponse::page(std::to_string(i)));
        views[i]->load(request(server.url("/" + std::to_string(i))));
    }
    EXPECT_STREQ(webkit_web_view_get_uri(widgetOf(*views[0])), server.url("/0").c_str());
    for (const auto i : {1U, 2U}) {
        EXPECT_EQ(webkit_web_view_get_uri(widgetOf(*views[i])), nullptr) << "the load has not started";
        EXPECT_EQ(urlOf(*views[i]), server.url("/" + std::to_string(i))) << "but the view reports the URL";
    }
    for (std::size_t i = 0; i < views.size(); ++i) {
        EXPECT_TRUE(waitForTitle(*views[i], std::to_string(i)));
    }
}

TEST_F(WebProcess, isStartedOutOfTurnForAPageThatIsSeen) {
    limitProcesses(1);
    const auto first = makeView();
    ASSERT_TRUE(loadPage(*first, "/first"));
    const auto waiting = makeView();
    waiting->load(request(server.url("/waiting")));
    window->show();
    ASSERT_TRUE(loadPage(*view, "/page"));
    EXPECT_EQ(server.count("/waiting"), 0U);
}

TEST_F(WebProcess, isNotStartedAtTheLimitUntilThePageIsSeen) {
    limitProcesses(1);
    const auto first = makeView();
    ASSERT_TRUE(loadPage(*first, "/first"));
    server.route("/page", HTTPResponse::page("/page"));
    view->load(request(server.url("/page"), 0.1));
    EXPECT_EQ(urlOf(*view), server.url("/page"));
    runFor(0.4);
    EXPECT_EQ(server.count("/page"), 0U);
    EXPECT_EQ(urlOf(*view), server.url("/page"));
    EXPECT_FALSE(view->isLoading());
    EXPECT_TRUE(navigation->failures.empty()) << "the timeout starts with the load";
    server.route("/page", HTTPResponse::page("/page").withEnding(Ending::held));
    window->show();
    EXPECT_TRUE(waitForFailures(1));
}

TEST_F(WebProcess, isNotStartedAtTheLimitUntilAnotherEnds) {
    limitProcesses(1);
    auto first = makeView();
    ASSERT_TRUE(loadPage(*first, "/first"));
    server.route("/page", HTTPResponse::page("/page"));
    view->load(request(server.url("/page")));
    runFor(0.2);
    EXPECT_EQ(server.count("/page"), 0U);
    first.reset();
    EXPECT_TRUE(waitForLoad("/page", 1));
}

TEST_F(WebProcess, isStartedForTheLastPageThatAWaitingViewWasAskedFor) {
    limitProcesses(0);
    for (const std::string path : {"/one", "/two"}) {
        server.route(path, HTTPResponse::page(path));
        view->load(request(server.url(path)));
        EXPECT_EQ(urlOf(*view), server.url(path));
    }
    window->show();
    EXPECT_TRUE(waitForLoad("/two", 1));
    EXPECT_EQ(server.count("/one"), 0U);
}

TEST_F(WebProcess, isNotStartedForAWaitingPageThatWasStopped) {
    limitProcesses(0);
    view->load(request(server.url("/page")));
    std::vector<std::string> urls;
    const auto url = view->observe(Property::url, [&] { urls.push_back(urlOf(*view)); });
    view->stopLoading();
    EXPECT_EQ(urls, std::vector<std::string>{""});
    window->show();
    runFor(0.2);
    EXPECT_TRUE(webProcesses().empty());
    EXPECT_TRUE(loadPage(*view, "/other"));
    EXPECT_EQ(server.count("/page"), 0U);
}

TEST_F(WebProcess, ofThePageLongestOutOfSightIsEvictedAtTheLimit) {
    limitProcesses(2);
    const auto unseen = makeView();
    ASSERT_TRUE(loadPage(*unseen, "/unseen"));
    ASSERT_TRUE(loadPage(*view, "/seen"));
    window->show();
    window->hide();
    const auto third = showPage("/third");
    EXPECT_TRUE(runUntil([] { return webProcesses().size() == 2; }));
    EXPECT_EQ(evaluate(*view, "document.title"), "/seen");
    EXPECT_EQ(urlOf(*unseen), server.url("/unseen"));
    EXPECT_EQ(unseen->title(), "/unseen");
}

TEST_F(WebProcess, thatWasEvictedIsStartedAgainEachTimeThePageIsSeen) {
    limitProcesses(1);
    ASSERT_TRUE(loadPage(*view, "/one"));
    const auto other = showPage("/two");
    other->window.hide();
    for (std::size_t times = 2; times < 4; ++times) {
        window->show();
        EXPECT_TRUE(waitForLoad("/one", times));
        window->hide();
        other->window.show();
        EXPECT_TRUE(runUntil([&] { return server.count("/two") == times; }));
        EXPECT_TRUE(waitForTitle(*other->view, "/two"));
        other->window.hide();
    }
    EXPECT_TRUE(runUntil([] { return webProcesses().size() == 1; }));
}

TEST_F(WebProcess, ofAVisiblePageIsNotEvicted) {
    limitProcesses(1);
    window->show();
    ASSERT_TRUE(loadPage(*view, "/one"));
    const auto other = showPage("/two");
    EXPECT_EQ(webProcesses().size(), 2U);
    EXPECT_EQ(evaluate(*view, "document.title"), "/one");
}

TEST_F(WebProcess, ofAPageWithAnOpenPanelIsNotEvicted) {
    limitProcesses(1);
    ASSERT_TRUE(loadPage(*view, "/one"));
    run(*view, "alert('stay')");
    ASSERT_TRUE(runUntil([&] { return ui->panels.size() == 1; }));
    const auto other = showPage("/two");
    ui->panels[0].alert();
    EXPECT_EQ(evaluate(*view, "document.title"), "/one");
}

TEST_F(WebProcess, ofAPageThatPlaysSoundIsNotEvicted) {
    limitProcesses(1);
    ASSERT_TRUE(loadPage(*view, "/one"));
    run(*view, "const sound = new AudioContext(); const tone = new OscillatorNode(sound);"
               "tone.connect(sound.destination); tone.start()");
    ASSERT_TRUE(runUntil([&] { return webkit_web_view_is_playing_audio(widgetOf(*view)) == TRUE; }));
    const auto other = showPage("/two");
    EXPECT_EQ(evaluate(*view, "document.title"), "/one");
    EXPECT_EQ(webProcesses().size(), 2U);
}

TEST_F(WebProcess, thatServesAVisiblePageIsNotEvicted) {
    limitProcesses(1);
    window->show();
    ASSERT_TRUE(loadPage(*view, "/opener"));
    const auto child = openChild();
    TestWindow childWindow(*child);
    childWindow.show();
    window->hide();
    const auto other = showPage("/two");
    EXPECT_EQ(evaluate(*view, "document.title"), "/opener");
    EXPECT_EQ(server.count("/child"), 1U);
    childWindow.hide();
    other->window.hide();
    const auto last = showPage("/last");
    EXPECT_TRUE(runUntil([] { return webProcesses().size() == 2; })) << "the two pages are evicted together";
    EXPECT_EQ(evaluate(*other->view, "document.title"), "/two");
}

TEST_F(WebProcess, thatWasEvictedDoesNotCountAsFailed) {
    limitProcesses(1);
    ASSERT_TRUE(loadPage(*view, "/opener"));
    const auto child = openChild();
    showPage("/other");
    TestWindow childWindow(*child);
    childWindow.show();
    ASSERT_TRUE(runUntil([&] { return server.count("/child") == 2 && !child->isLoading(); }));
    webkit_web_view_terminate_web_process(widgetOf(*child));
    EXPECT_TRUE(runUntil([&] { return server.count("/child") == 3; }))
        << "the first termination within a minute";
}

TEST_F(WebProcess, isStartedInTurnForAWindowThatIsToKnowNothingOfItsOpener) {
    limitProcesses(1);
    window->show();
    ASSERT_TRUE(loadPage(*view, "/opener"));
    std::vector<std::shared_ptr<WebView>> children;
    ui->onCreate = [&](const auto& configuration) {
        children.push_back(makeView(configuration));
        return children.back();
    };
    for (const std::string path : {"/one", "/two"}) {
        server.route(path, HTTPResponse::page(path));
    }
    run(*view, "window.open('/one', '', 'noopener'); window.open('/two', '', 'noopener')");
    ASSERT_TRUE(runUntil([&] { return children.size() == 2; }));
    runFor(0.3);
    EXPECT_EQ(server.count("/one") + server.count("/two"), 0U);
    EXPECT_EQ(urlOf(*children[1]), server.url("/two"));
    TestWindow second(*children[1]);
    second.show();
    EXPECT_TRUE(waitForTitle(*children[1], "/two"));
    EXPECT_EQ(evaluate(*children[1], "String(window.opener)"), "null");
    EXPECT_EQ(server.count("/one"), 0U);
    second.hide();
    TestWindow first(*children[0]);
    first.show();
    EXPECT_TRUE(waitForTitle(*children[0], "/one"));
    second.show();
    EXPECT_TRUE(runUntil([&] { return server.count("/two") == 2; })) << "it was evicted";
    EXPECT_EQ(evaluate(*view, "document.title"), "/opener");
    EXPECT_EQ(server.count("/opener"), 1U) << "the opener was not";
}

TEST_F(WebProcess, thatEndedWithTheWindowItOpenedBringsThatBackWhenItIsSeen) {
    limitProcesses(1);
    window->show();
    ASSERT_TRUE(loadPage(*view, "/opener"));
    std::shared_ptr<WebView> child;
    ui->onCreate = [&](const auto& configuration) { return child = makeView(configuration); };
    server.route("/child", HTTPResponse::page("/child"));
    run(*view, "window.open('/child', '', 'noopener')");
    ASSERT_TRUE(runUntil([&] { return child && urlOf(*child) == server.url("/child"); }));
    endProcess();
    ASSERT_TRUE(waitForLoad("/opener", 2));
    EXPECT_EQ(server.count("/child"), 0U);
    EXPECT_EQ(urlOf(*child), server.url("/child"));
    TestWindow childWindow(*child);
    childWindow.show();
    EXPECT_TRUE(waitForTitle(*child, "/child"));
}
