#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/WebProcesses.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::HTTPServer;
using TestSupport::runUntil;
using TestSupport::webProcesses;
using Ending = TestSupport::HTTPResponse::Ending;

namespace {

class WebViewLoad : public WebViewTest {
protected:
    static HTTPResponse withEnding(Ending ending) { return HTTPResponse::page("Late").withEnding(ending); }

    const RecordingNavigationDelegate::Failure& failure() const { return navigation->failures.back(); }

    void expectFailure(bool provisional, const std::string& domain, int code,
                       const std::string& failingURL) const {
        ASSERT_FALSE(navigation->failures.empty());
        EXPECT_EQ(failure().provisional, provisional);
        EXPECT_EQ(failure().error.domain, domain);
        EXPECT_EQ(failure().error.code, code);
        EXPECT_EQ(failure().error.failingURL, failingURL);
        EXPECT_FALSE(failure().error.localizedDescription.empty());
    }
};

constexpr const char* urlDomain = "NSURLErrorDomain";
constexpr const char* webKitDomain = "WebKitErrorDomain";

double secondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace

// Tests of loads that time out.

TEST_F(WebViewLoad, failsWhenTheServerDoesNotAnswerInTime) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/never"), 0.2));
    EXPECT_EQ(urlOf(*view), server.url("/never"));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1001, server.url("/never"));
    EXPECT_EQ(failure().error.localizedDescription, "The request timed out.");
    EXPECT_FALSE(failure().isLoading);
    EXPECT_EQ(textOf(failure().url), server.url("/before")) << "the previous page stays";
    EXPECT_EQ(evaluate(*view, "document.title"), "/before");
    EXPECT_EQ(navigation->failures.size(), 1U);
}

TEST_F(WebViewLoad, theFirstLoadCanTimeOutToo) {
    const auto view = makeView();
    server.route("/never", withEnding(Ending::held));
    // Use a timeout that elapses before the web process has started.
    view->load(request(server.url("/never"), 0.02));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1001, server.url("/never"));
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(view->url(), std::nullopt);
    runFor(0.2);
    EXPECT_EQ(navigation->failures.size(), 1U);
    EXPECT_TRUE(loadPage(*view, "/after"));
}

TEST_F(WebViewLoad, theTimeOutBeginsAgainAtARedirect) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/redirect", HTTPResponse::redirect("/never").withEnding(Ending::held));
    server.route("/never", withEnding(Ending::held));
    const auto begin = std::chrono::steady_clock::now();
    view->load(request(server.url("/redirect"), 2));
    const auto timer = Timer::scheduled(0.5, false, [this] { server.release("/redirect"); });
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1001, server.url("/never"));
    EXPECT_GE(secondsSince(begin), 2.5);
}

TEST_F(WebViewLoad, aPageThatBeganToShowHasAllTheTimeItNeeds) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    auto endless = withEnding(Ending::unfinished);
    endless.body += std::string(5000, 'x');
    server.route("/endless", endless);
    view->load(request(server.url("/endless"), 2));
    ASSERT_TRUE(runUntil([&] { return view->canGoBack(); }));
    runFor(2.2);
    EXPECT_TRUE(view->isLoading());
    EXPECT_TRUE(navigation->failures.empty());
}

TEST_F(WebViewLoad, onlyTheProgramsOwnLoadsHaveATimeOut) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/page", HTTPResponse::page("Page"));
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/page"), 2));
    ASSERT_TRUE(waitForTitle(*view, "Page"));
    run(*view, "location = '/never'");
    ASSERT_TRUE(runUntil([&] { return server.count("/never") == 1; }));
    runFor(2.2);
    EXPECT_TRUE(view->isLoading());
    EXPECT_TRUE(navigation->failures.empty());
}

TEST_F(WebViewLoad, aJumpWithinThePageDoesNotTimeOut) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    view->load(request(server.url("/page#end"), 2));
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    runFor(2.2);
    EXPECT_TRUE(navigation->failures.empty());
    EXPECT_EQ(urlOf(*view), server.url("/page#end"));
}

TEST_F(WebViewLoad, aReloadInPlaceOfALoadEndsItsTimeOut) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/never"), 2));
    ASSERT_TRUE(runUntil([&] { return server.count("/never") == 1; }));
    server.route("/page", HTTPResponse::page("Again").withEnding(Ending::held));
    view->reload();
    ASSERT_TRUE(runUntil([&] { return server.count("/page") == 2; }));
    runFor(2.2);
    server.release("/page");
    EXPECT_TRUE(waitForTitle(*view, "Again"));
    for (const auto& failure : navigation->failures) {
        EXPECT_EQ(failure.error.code, -999);
    }
}

TEST_F(WebViewLoad, timesOutAlthoughTheWebProcessHangs) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    const auto processes = webProcesses();
    ASSERT_EQ(processes.size(), 1U);
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/never"), 2));
    ASSERT_TRUE(runUntil([&] { return server.count("/never") == 1; }));
    ASSERT_EQ(::kill(processes[0], SIGSTOP), 0);
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1001, server.url("/never"));
    ASSERT_EQ(::kill(processes[0], SIGCONT), 0);
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_TRUE(loadPage(*view, "/after"));
    for (std::size_t index = 1; index < navigation->failures.size(); ++index) {
        EXPECT_EQ(navigation->failures[index].error.code, -999);
    }
}

// Tests of loads that are replaced or stopped.

TEST_F(WebViewLoad, aSecondLoadCancelsTheFirst) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/never"), 30));
    ASSERT_TRUE(runUntil([&] { return server.count("/never") == 1; }));
    ASSERT_TRUE(loadPage(*view, "/second"));
    ASSERT_EQ(navigation->failures.size(), 1U);
    expectFailure(true, urlDomain, -999, server.url("/never"));
}

TEST_F(WebViewLoad, theTimeOutOfASecondLoadOutlivesTheFirst) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/first", withEnding(Ending::held));
    server.route("/second", withEnding(Ending::held));
    view->load(request(server.url("/first"), 30));
    ASSERT_TRUE(runUntil([&] { return server.count("/first") == 1; }));
    view->load(request(server.url("/second"), 0.4));
    ASSERT_TRUE(waitForFailures(2));
    // On a slow machine, the second load times out before WebKitGTK reports that the first load was
    // cancelled. The failures are then recorded in reverse order.
    if (navigation->failures[0].error.failingURL == server.url("/second")) {
        std::swap(navigation->failures[0], navigation->failures[1]);
    }
    EXPECT_EQ(navigation->failures[0].error.code, -999);
    EXPECT_EQ(navigation->failures[0].error.failingURL, server.url("/first"));
    expectFailure(true, urlDomain, -1001, server.url("/second"));
}

TEST_F(WebViewLoad, stopGivesThePreviousPagesURLBack) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/never"), 2));
    ASSERT_TRUE(runUntil([&] { return server.count("/never") == 1; }));
    view->stopLoading();
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -999, server.url("/never"));
    EXPECT_FALSE(view->isLoading());
    EXPECT_EQ(urlOf(*view), server.url("/before"));
    runFor(2.2);
    EXPECT_EQ(navigation->failures.size(), 1U) << "a stopped load does not time out";
}

TEST_F(WebViewLoad, stopRightBehindLoadStopsIt) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/page", HTTPResponse::page("Page"));
    view->load(request(server.url("/page")));
    view->stopLoading();
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(urlOf(*view), server.url("/before"));
    EXPECT_EQ(server.count("/page"), 0U);
    EXPECT_TRUE(loadPage(*view, "/after"));
}

TEST_F(WebViewLoad, stopRightBehindTheFirstLoadStopsIt) {
    const auto view = makeView();
    server.route("/page", HTTPResponse::page("Page"));
    view->load(request(server.url("/page")));
    view->stopLoading();
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(view->url(), std::nullopt);
    EXPECT_TRUE(loadPage(*view, "/page"));
}

TEST_F(WebViewLoad, aStoppedLoadCanBeAskedForAgain) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/page", HTTPResponse::page("Page"));
    view->load(request(server.url("/page")));
    view->stopLoading();
    view->load(request(server.url("/page")));
    EXPECT_TRUE(waitForTitle(*view, "Page"));
}

TEST_F(WebViewLoad, stopRightBehindReloadStopsIt) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    view->reload();
    view->stopLoading();
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(urlOf(*view), server.url("/page"));
    view->reload();
    ASSERT_TRUE(runUntil([&] { return server.count("/page") == 2; }));
    EXPECT_TRUE(waitForTitle(*view, "/page"));
}

// Tests of loads that fail.

TEST_F(WebViewLoad, failsWhenThereIsNoSuchHost) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    view->load(request("http://no-such-host.invalid/"));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1003, "http://no-such-host.invalid/");
    EXPECT_EQ(urlOf(*view), server.url("/before"));
    EXPECT_EQ(view->title(), "/before");
    EXPECT_EQ(evaluate(*view, "document.title"), "/before") << "no error page of WebKitGTK";
    EXPECT_FALSE(view->canGoBack());
}

TEST_F(WebViewLoad, failsWhenNobodyListens) {
    const auto view = makeView();
    const HTTPServer::RefusedPort refused;
    const std::string url = "http://127.0.0.1:" + std::to_string(refused.port()) + "/";
    view->load(request(url));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1004, url);
    EXPECT_EQ(view->url(), std::nullopt);
}

TEST_F(WebViewLoad, failsWhenTheConnectionIsDropped) {
    const auto view = makeView();
    server.route("/dropped", withEnding(Ending::dropped));
    view->load(request(server.url("/dropped")));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1005, server.url("/dropped"));
}

TEST_F(WebViewLoad, aPageThatIsStoppedHalfwayStaysAndFailsAfterItsCommit) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    auto half = withEnding(Ending::unfinished);
    half.body += std::string(5000, 'x');
    server.route("/half", half);
    view->load(request(server.url("/half")));
    ASSERT_TRUE(runUntil([&] { return view->canGoBack(); }));
    view->stopLoading();
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(false, urlDomain, -999, server.url("/half"));
    EXPECT_EQ(urlOf(*view), server.url("/half"));
    EXPECT_FALSE(view->isLoading());
}

TEST_F(WebViewLoad, aSecondLoadBeforeTheFirstHasBegunStillHasItsTimeOut) {
    const auto view = makeView();
    server.route("/never", withEnding(Ending::held));
    view->load(request(server.url("/other")));
    view->load(request(server.url("/never"), 1));
    ASSERT_TRUE(runUntil([&] {
        return std::ranges::any_of(navigation->failures,
                                   [](const auto& failure) { return failure.error.code == -1001; });
    }));
}

TEST_F(WebViewLoad, failsAfterARedirectUnderTheTargetsName) {
    const auto view = makeView();
    const HTTPServer::RefusedPort refused;
    const std::string target = "http://127.0.0.1:" + std::to_string(refused.port()) + "/";
    server.route("/redirect", HTTPResponse::redirect(target));
    view->load(request(server.url("/redirect")));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1004, target);
}

TEST_F(WebViewLoad, failsForAPortOfAnotherProtocol) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    view->load(request("http://127.0.0.1:1/"));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, webKitDomain, 103, "http://127.0.0.1:1/");
    EXPECT_FALSE(view->isLoading());
    EXPECT_EQ(urlOf(*view), server.url("/before"));
    EXPECT_FALSE(view->canGoBack());
    EXPECT_EQ(evaluate(*view, "document.title"), "/before");
}

TEST_F(WebViewLoad, failsForARedirectToAPortOfAnotherProtocol) {
    const auto view = makeView();
    ASSERT_TRUE(loadPage(*view, "/before"));
    server.route("/redirect", HTTPResponse::redirect("http://127.0.0.1:1/"));
    view->load(request(server.url("/redirect")));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, webKitDomain, 103, "http://127.0.0.1:1/");
    EXPECT_EQ(urlOf(*view), server.url("/before"));
}

TEST_F(WebViewLoad, failsForASchemeThatNobodyKnows) {
    const auto view = makeView();
    view->load(request("unknown:whatever"));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, webKitDomain, 101, "unknown:whatever");
}

TEST_F(WebViewLoad, failsForAHostThatTheEngineDoesNotTake) {
    const auto view = makeView();
    view->load(request("http://a%20b.test/"));
    ASSERT_TRUE(waitForFailures(1));
    EXPECT_TRUE(failure().provisional);
    EXPECT_FALSE(view->isLoading());
}

TEST_F(WebViewLoad, failsForACertificateThatNobodyVouchesFor) {
    const std::filesystem::path directory = g_get_user_data_dir();
    const std::string certificateFile = directory / "certificate.pem";
    const std::string keyFile = directory / "key.pem";
    const std::string command = "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost "
                                "-addext subjectAltName=DNS:localhost -keyout '" +
                                keyFile + "' -out '" + certificateFile + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) {
        GTEST_SKIP() << "openssl, which makes the certificate, is not installed";
    }
    g_autoptr(GTlsCertificate) certificate =
        g_tls_certificate_new_from_files(certificateFile.c_str(), keyFile.c_str(), nullptr);
    ASSERT_NE(certificate, nullptr);
    g_autoptr(GSocketService) service = g_socket_service_new();
    const int port = g_socket_listener_add_any_inet_port(G_SOCKET_LISTENER(service), nullptr, nullptr);
    ASSERT_NE(port, 0);
    std::vector<GObjectPtr<GIOStream>> connections;
    struct Context {
        GTlsCertificate* certificate;
        std::vector<GObjectPtr<GIOStream>>& connections;
    } context{.certificate = certificate, .connections = connections};
    g_signal_connect(
        service, "incoming",
        G_CALLBACK(+[](GSocketService*, GSocketConnection* connection, GObject*, gpointer data) -> gboolean {
            auto& context = *static_cast<Context*>(data);
            GIOStream* stream =
                g_tls_server_connection_new(G_IO_STREAM(connection), context.certificate, nullptr);
            context.connections.push_back(GObjectPtr<GIOStream>::adopt(stream));
            g_tls_connection_handshake_async(G_TLS_CONNECTION(stream), G_PRIORITY_DEFAULT, nullptr, nullptr,
                                             nullptr);
            return TRUE;
        }),
        &context);

    const auto view = makeView();
    const std::string url = "https://localhost:" + std::to_string(port) + "/";
    view->load(request(url));
    ASSERT_TRUE(waitForFailures(1));
    expectFailure(true, urlDomain, -1202, url);
    EXPECT_EQ(navigation->failures.size(), 1U);
    EXPECT_FALSE(connections.empty());
    g_socket_service_stop(service);
}

TEST_F(WebViewLoad, aPageOfAnErrorStatusIsAPage) {
    const auto view = makeView();
    for (const int status : {404, 500}) {
        auto response = HTTPResponse::page("Status " + std::to_string(status));
        response.status = status;
        server.route("/status", response);
        view->load(request(server.url("/status")));
        EXPECT_TRUE(waitForTitle(*view, "Status " + std::to_string(status)));
    }
    EXPECT_TRUE(navigation->failures.empty());
}

TEST_F(WebViewLoad, askedForAPasswordItShowsThePageForThatCase) {
    const auto view = makeView();
    auto response = HTTPResponse::page("Unauthorized");
    response.status = 401;
    response.headers.emplace_back("WWW-Authenticate", "Basic realm=\"secret\"");
    server.route("/secret", response);
    view->load(request(server.url("/secret")));
    EXPECT_TRUE(waitForTitle(*view, "Unauthorized"));
    EXPECT_TRUE(navigation->failures.empty());
}

// Tests of the lifetime of delegates, and of what a delegate may do when a load fails.

TEST_F(WebViewLoad, withoutADelegateAFailureIsNobodysBusiness) {
    const auto view = WebView::create(WebViewConfiguration::create());
    const HTTPServer::RefusedPort refused;
    view->load(request("http://127.0.0.1:" + std::to_string(refused.port()) + "/"));
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_TRUE(loadPage(*view, "/after"));
    EXPECT_FALSE(view->canGoBack()) << "no error page of WebKitGTK";
}

TEST_F(WebViewLoad, aDelegateIsHeldWeakly) {
    const auto view = makeView();
    const std::weak_ptr<NavigationDelegate> weak = navigation;
    const auto last = std::move(navigation);
    navigation = std::make_shared<RecordingNavigationDelegate>();
    EXPECT_EQ(weak.use_count(), 1);
}

TEST_F(WebViewLoad, viewAndDelegateMayBeLetGoWhileAFailureIsTold) {
    auto view = makeView();
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    const HTTPServer::RefusedPort refused;
    bool isTold = false;
    navigation->onFailure = [&] {
        view.reset();
        navigation.reset();
        isTold = true;
    };
    view->load(request("http://127.0.0.1:" + std::to_string(refused.port()) + "/"));
    ASSERT_TRUE(runUntil([&] { return isTold; }));
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
}

TEST_F(WebViewLoad, aFailureMayBeAnsweredWithAnotherLoad) {
    const auto view = makeView();
    const HTTPServer::RefusedPort refused;
    server.route("/instead", HTTPResponse::page("Instead"));
    navigation->onFailure = [&] { view->load(request(server.url("/instead"))); };
    view->load(request("http://127.0.0.1:" + std::to_string(refused.port()) + "/"));
    EXPECT_TRUE(waitForTitle(*view, "Instead"));
    EXPECT_EQ(navigation->failures.size(), 1U);
}

// Tests of editing actions and swipe gestures.

TEST_F(WebViewLoad, editingActionsGoToThePage) {
    const auto view = makeView();
    TestWindow window(*view);
    window.show();
    server.route("/edit", HTTPResponse::html("<title>Edit</title><input id=i value=''>"));
    view->load(request(server.url("/edit")));
    ASSERT_TRUE(waitForTitle(*view, "Edit"));
    for (const Action action : {StandardAction::undo, StandardAction::redo, StandardAction::cut,
                                StandardAction::copy, StandardAction::paste, StandardAction::selectAll}) {
        EXPECT_TRUE(view->respondsTo(action));
    }
    EXPECT_FALSE(view->respondsTo(Action("goBack")));

    gtk_widget_grab_focus(GTK_WIDGET(widgetOf(*view)));
    evaluate(*view, "i.focus(); document.execCommand('insertText', false, 'typed'); 1");
    const auto value = [&] { return evaluate(*view, "i.value"); };
    ASSERT_EQ(value(), "typed");
    view->perform(StandardAction::undo, {});
    EXPECT_TRUE(runUntil([&] { return value().empty(); }));
    view->perform(StandardAction::redo, {});
    EXPECT_TRUE(runUntil([&] { return value() == "typed"; }));
    view->perform(StandardAction::selectAll, {});
    view->perform(StandardAction::cut, {});
    EXPECT_TRUE(runUntil([&] { return value().empty(); }));
    view->perform(StandardAction::paste, {});
    EXPECT_TRUE(runUntil([&] { return value() == "typed"; }));
}

TEST_F(WebViewLoad, swipingIsASettingOfTheView) {
    const auto configuration = WebViewConfiguration::create();
    const auto one = makeView(configuration);
    const auto other = makeView(configuration);
    const TestWindow oneWindow(*one);
    const TestWindow otherWindow(*other);
    const auto swipes = [](WebView& view) {
        return webkit_settings_get_enable_back_forward_navigation_gestures(
            webkit_web_view_get_settings(widgetOf(view)));
    };
    one->setAllowsBackForwardNavigationGestures(true);
    EXPECT_TRUE(swipes(*one));
    EXPECT_FALSE(swipes(*other));
    one->setAllowsBackForwardNavigationGestures(false);
    EXPECT_FALSE(swipes(*one));
}

// With gestures enabled, WebKitGTK 2.50.6 takes a snapshot of each page that the view leaves, and crashes if
// the view is not in a window (not reported).
TEST_F(WebViewLoad, aViewInNoWindowIsNotSwiped) {
    const auto view = makeView(WebViewConfiguration::create());
    view->setAllowsBackForwardNavigationGestures(true);
    WebKitSettings* settings = webkit_web_view_get_settings(widgetOf(*view));
    EXPECT_FALSE(webkit_settings_get_enable_back_forward_navigation_gestures(settings));
    {
        const TestWindow window(*view);
        EXPECT_TRUE(webkit_settings_get_enable_back_forward_navigation_gestures(settings));
    }
    EXPECT_FALSE(webkit_settings_get_enable_back_forward_navigation_gestures(settings));
}
