#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/Waiting.h"

using namespace Platform;
using TestSupport::runUntil;
using TestSupport::webProcesses;

namespace {

class WebViewDialog : public WebViewTest {
protected:
    void SetUp() override {
        view = makeView();
        ASSERT_TRUE(loadPage(*view, "/page"));
    }

    /// Evaluates a JavaScript expression in the page without waiting for the result. The page's title becomes
    /// "got " followed by the result.
    void ask(const std::string& expression) { run(*view, "document.title = 'got ' + (" + expression + ")"); }
    bool waitForPanel() {
        return runUntil([this] { return !ui->panels.empty(); });
    }

    std::shared_ptr<WebView> view;
};

} // namespace

TEST_F(WebViewDialog, anAlertWaitsForItsCompletion) {
    ask("alert('Hello\\nthere')");
    ASSERT_TRUE(waitForPanel());
    EXPECT_EQ(ui->panels[0].message, "Hello\nthere");
    EXPECT_EQ(ui->panels[0].url.value_or(URL::fromFilePath("/", true)).host(), "127.0.0.1");
    runFor(0.1);
    EXPECT_EQ(view->title(), "/page");
    ui->panels[0].alert();
    EXPECT_TRUE(waitForTitle(*view, "got undefined"));
    ui->panels[0].alert();
}

TEST_F(WebViewDialog, isThePagesThatIsShownWhileAnotherIsOnItsWay) {
    using TestSupport::HTTPResponse;
    server.route("/held", HTTPResponse::page("Held").withEnding(HTTPResponse::Ending::held));
    const auto expectSpeaker = [&](const std::string& path) {
        ui->panels.clear();
        ask("alert('Hello')");
        ASSERT_TRUE(waitForPanel());
        EXPECT_EQ(textOf(ui->panels[0].url), server.url(path));
        ui->panels[0].alert();
    };
    view->load(request(server.url("/held")));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 1; }));
    ASSERT_EQ(urlOf(*view), server.url("/held"));
    expectSpeaker("/page");
    view->load(request(server.url("/held?again")));
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 2; }));
    expectSpeaker("/page");
    run(*view, "location = '/held?from-the-page'");
    ASSERT_TRUE(runUntil([&] { return server.count("/held") == 3; }));
    expectSpeaker("/page");
    server.release("/held");
    ASSERT_TRUE(waitForTitle(*view, "Held"));
    expectSpeaker("/held?from-the-page");
}

TEST_F(WebViewDialog, aConfirmationGivesItsAnswer) {
    for (const bool answer : {true, false}) {
        ask("confirm('Sure?')");
        ASSERT_TRUE(waitForPanel());
        EXPECT_EQ(ui->panels[0].message, "Sure?");
        ui->panels[0].confirm(answer);
        EXPECT_TRUE(waitForTitle(*view, answer ? "got true" : "got false"));
        ui->panels.clear();
    }
}

TEST_F(WebViewDialog, onlyTheFirstAnswerCounts) {
    ask("confirm('Sure?')");
    ASSERT_TRUE(waitForPanel());
    ui->panels[0].confirm(true);
    ui->panels[0].confirm(false);
    EXPECT_TRUE(waitForTitle(*view, "got true"));
}

TEST_F(WebViewDialog, mayBeAnsweredFromInsideTheCall) {
    ui->onPanel = [this] { ui->panels.back().confirm(true); };
    ask("confirm('Sure?')");
    EXPECT_TRUE(waitForTitle(*view, "got true"));
}

TEST_F(WebViewDialog, aCompletionDestroyedUncalledRefuses) {
    ask("confirm('Sure?')");
    ASSERT_TRUE(waitForPanel());
    auto copy = ui->panels[0].confirm;
    ui->panels.clear();
    runFor(0.1);
    EXPECT_EQ(view->title(), "/page") << "a copy is left";
    copy = nullptr;
    EXPECT_TRUE(waitForTitle(*view, "got false"));

    ask("alert('Hello')");
    ASSERT_TRUE(waitForPanel());
    ui->panels.clear();
    EXPECT_TRUE(waitForTitle(*view, "got undefined"));
}

TEST_F(WebViewDialog, hasTheSafeAnswerWithoutADelegate) {
    view->setUIDelegate({});
    ask("confirm('Sure?')");
    EXPECT_TRUE(waitForTitle(*view, "got false"));
    ask("alert('Hello')");
    EXPECT_TRUE(waitForTitle(*view, "got undefined"));
    EXPECT_TRUE(ui->panels.empty());
}

TEST_F(WebViewDialog, aPromptGivesNull) {
    ask("prompt('Name?', 'Nobody')");
    EXPECT_TRUE(waitForTitle(*view, "got null"));
    EXPECT_TRUE(ui->panels.empty());
}

TEST_F(WebViewDialog, aPageThatAsksToStayIsLeft) {
    TestWindow window(*view);
    window.show();
    evaluate(*view, "window.onbeforeunload = event => { event.preventDefault(); return 'Stay'; }; 1");
    EXPECT_TRUE(loadPage(*view, "/next"));
    EXPECT_TRUE(ui->panels.empty());
    EXPECT_TRUE(navigation->failures.empty());
}

TEST_F(WebViewDialog, theViewMayGoWhileOneIsPending) {
    ask("confirm('Sure?')");
    ASSERT_TRUE(waitForPanel());
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    view.reset();
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
    ui->panels[0].confirm(true);
    ui->panels.clear();
}

TEST_F(WebViewDialog, viewAndDelegateMayGoFromInsideTheCall) {
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    ui->onPanel = [this] {
        view.reset();
        ui.reset();
    };
    ask("confirm('Sure?')");
    EXPECT_TRUE(runUntil([&] { return widget == nullptr; }));
}

TEST_F(WebViewDialog, aScriptThatAsksForeverEndsWithItsView) {
    const auto before = webProcesses();
    run(*view, "setTimeout(() => { for (;;) confirm('Again?') })");
    ASSERT_TRUE(waitForPanel());
    gpointer widget = widgetOf(*view);
    g_object_add_weak_pointer(G_OBJECT(widget), &widget);
    view.reset();
    ASSERT_TRUE(runUntil([&] { return widget == nullptr; }));
    // Use a longer timeout, because WebKitGTK lets the script run for ten seconds after the view is
    // destroyed, and the web process may exit much later on a busy machine.
    EXPECT_TRUE(runUntil([&] { return webProcesses().size() < before.size(); }, 3 * TestSupport::patience));
}

TEST_F(WebViewDialog, anAnswerAfterTheWebProcessEndedIsHarmless) {
    ask("confirm('Sure?')");
    ASSERT_TRUE(waitForPanel());
    webkit_web_view_terminate_web_process(widgetOf(*view));
    ui->panels[0].confirm(true);
    view->reload();
    EXPECT_TRUE(runUntil([&] { return server.count("/page") == 2; }));
    EXPECT_TRUE(waitForTitle(*view, "/page"));
}
