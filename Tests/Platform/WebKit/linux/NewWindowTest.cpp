#include "Tests/Platform/WebKit/linux/WebViewFixture.h"

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

class WebViewNewWindow : public WebViewTest {
protected:
    void SetUp() override {
        window.reset();
        opener = makeView();
        window.emplace(*opener);
        window->show();
        ASSERT_TRUE(loadPage(*opener, "/opener"));
    }

    void acceptWindows() {
        ui->onCreate = [this](const std::shared_ptr<WebViewConfiguration>& configuration) {
            children.push_back(makeView(configuration));
            return children.back();
        };
    }

    std::shared_ptr<WebView> opener;
    std::optional<TestWindow> window;
    std::vector<std::shared_ptr<WebView>> children;
};

} // namespace

TEST_F(WebViewNewWindow, aScriptMayOpenOneWithoutAGesture) {
    acceptWindows();
    server.route("/child", HTTPResponse::html("<title>Child</title><script>document.title = 'Child of ' + "
                                              "(opener ? opener.document.title : 'nobody')</script>"));
    EXPECT_EQ(evaluate(*opener, "window.opened = window.open('/child'); opened ? 'opened' : 'refused'"),
              "opened");
    ASSERT_EQ(children.size(), 1U);
    EXPECT_TRUE(waitForTitle(*children[0], "Child of /opener"));
    EXPECT_EQ(evaluate(*opener, "opened.document.title"), "Child of /opener");
    ASSERT_EQ(ui->windows.size(), 1U);
    EXPECT_EQ(textOf(ui->windows[0].url), server.url("/child"));
    EXPECT_EQ(ui->windows[0].method, "GET");
}

TEST_F(WebViewNewWindow, hasTheOpenersSettingsContentAndSession) {
    acceptWindows();
    evaluate(*opener, "window.open('/opener'); 1");
    ASSERT_EQ(children.size(), 1U);
    WebKitWebView* parent = widgetOf(*opener);
    WebKitWebView* child = widgetOf(*children[0]);
    EXPECT_EQ(webkit_web_view_get_user_content_manager(parent),
              webkit_web_view_get_user_content_manager(child));
    EXPECT_EQ(webkit_web_view_get_network_session(parent), webkit_web_view_get_network_session(child));
    EXPECT_TRUE(
        webkit_settings_get_javascript_can_open_windows_automatically(webkit_web_view_get_settings(child)));
    EXPECT_FALSE(webkit_settings_get_enable_fullscreen(webkit_web_view_get_settings(child)));
}

TEST_F(WebViewNewWindow, aLinkMayOpenOne) {
    acceptWindows();
    server.route("/child", HTTPResponse::page("Child"));
    run(*opener, "document.body.innerHTML = '<a id=a target=_blank href=/child>x</a>'; a.click()");
    ASSERT_TRUE(runUntil([&] { return children.size() == 1; }));
    EXPECT_TRUE(waitForTitle(*children[0], "Child"));
}

TEST_F(WebViewNewWindow, aFormMayOpenOneWithItsMethod) {
    acceptWindows();
    server.route("/child", HTTPResponse::page("Child"));
    run(*opener,
        "document.body.innerHTML = '<form id=f target=_blank method=post action=/child><input name=a "
        "value=b></form>'; f.submit()");
    ASSERT_TRUE(runUntil([&] { return children.size() == 1; }));
    EXPECT_TRUE(waitForTitle(*children[0], "Child"));
    EXPECT_EQ(ui->windows[0].method, "POST");
    const auto requests = server.requests("/child");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].body, "a=b");
}

TEST_F(WebViewNewWindow, isRefusedWhereTheDelegateGivesNothing) {
    EXPECT_EQ(evaluate(*opener, "String(window.open('/child'))"), "null");
    EXPECT_EQ(ui->windows.size(), 1U);
    EXPECT_TRUE(navigation->failures.empty());
    EXPECT_TRUE(loadPage(*opener, "/after"));
}

TEST_F(WebViewNewWindow, isRefusedWithoutADelegate) {
    acceptWindows();
    opener->setUIDelegate({});
    EXPECT_EQ(evaluate(*opener, "String(window.open('/child'))"), "null");
    EXPECT_TRUE(children.empty());
}

TEST_F(WebViewNewWindow, mayBeShownWhileItIsMade) {
    std::optional<TestWindow> childWindow;
    ui->onCreate = [&](const std::shared_ptr<WebViewConfiguration>& configuration) {
        children.push_back(makeView(configuration));
        childWindow.emplace(*children.back());
        childWindow->show();
        return children.back();
    };
    server.route("/child", HTTPResponse::page("Child"));
    run(*opener, "window.open('/child')");
    ASSERT_TRUE(runUntil([&] { return children.size() == 1; }));
    EXPECT_TRUE(waitForTitle(*children[0], "Child"));
}

TEST_F(WebViewNewWindow, outlivesItsOpener) {
    acceptWindows();
    server.route("/child", HTTPResponse::page("Child"));
    evaluate(*opener, "window.open('/child'); 1");
    ASSERT_EQ(children.size(), 1U);
    ASSERT_TRUE(waitForTitle(*children[0], "Child"));
    gpointer widget = widgetOf(*opener);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    window.reset();
    opener.reset();
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
    EXPECT_TRUE(loadPage(*children[0], "/after"));
}

TEST_F(WebViewNewWindow, goesWithItsView) {
    acceptWindows();
    server.route("/child", HTTPResponse::page("Child"));
    evaluate(*opener, "window.open('/child'); 1");
    ASSERT_TRUE(waitForTitle(*children.at(0), "Child"));
    gpointer widget = widgetOf(*children[0]);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    children.clear();
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
    EXPECT_TRUE(loadPage(*opener, "/after"));
}

TEST_F(WebViewNewWindow, theOpenerMayBeLetGoWhileItIsMade) {
    ui->onCreate = [this](const std::shared_ptr<WebViewConfiguration>& configuration) {
        children.push_back(makeView(configuration));
        window.reset();
        opener.reset();
        return children.back();
    };
    server.route("/child", HTTPResponse::page("Child"));
    run(*opener, "window.open('/child')");
    ASSERT_TRUE(runUntil([&] { return children.size() == 1; }));
    TestSupport::runPending();
    EXPECT_TRUE(loadPage(*children[0], "/after"));
}

TEST_F(WebViewNewWindow, closingItselfDoesNothing) {
    acceptWindows();
    server.route("/child", HTTPResponse::page("Child"));
    evaluate(*opener, "window.opened = window.open('/child'); 1");
    ASSERT_EQ(children.size(), 1U);
    ASSERT_TRUE(waitForTitle(*children[0], "Child"));
    run(*opener, "opened.close()");
    EXPECT_EQ(evaluate(*opener, "'still here'"), "still here");
    EXPECT_EQ(children[0]->title(), "Child");
}

TEST_F(WebViewNewWindow, thatIsMovedToAProcessOfItsOwnIsEvictedAlone) {
    limitProcesses(2);
    acceptWindows();
    auto isolated = HTTPResponse::page("/child");
    isolated.headers.emplace_back("Cross-Origin-Opener-Policy", "same-origin");
    server.route("/child", isolated);
    run(*opener, "window.open('/child')");
    ASSERT_TRUE(runUntil([&] { return children.size() == 1; }));
    ASSERT_TRUE(waitForTitle(*children[0], "/child"));
    ASSERT_EQ(evaluate(*children[0], "String(window.opener)"), "null");
    bool wasEvicted = false;
    const SignalConnection connection(
        widgetOf(*children[0]), "web-process-terminated",
        G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason, bool* ended) { *ended = true; }),
        &wasEvicted);
    const auto third = makeView();
    TestWindow thirdWindow(*third);
    thirdWindow.show();
    ASSERT_TRUE(loadPage(*third, "/third"));
    EXPECT_TRUE(runUntil([&] { return wasEvicted; }));
    EXPECT_EQ(evaluate(*opener, "document.title"), "/opener");
}
