#include "Tests/Platform/WebKit/linux/WebViewFixture.h"

using namespace Platform;
using TestSupport::runUntil;

namespace {

class WebViewDialog : public WebViewTest {
protected:
    void SetUp() override {
        view = makeView();
        ASSERT_TRUE(loadPage(*view, "/page"));
    }

    /// Runs a script that leaves its result in the page's title.
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
    const auto copy = ui->panels[0].confirm;
    ui->panels.clear();
    runFor(0.1);
    EXPECT_EQ(view->title(), "/page") << "a copy is left";
    const_cast<std::function<void(bool)>&>(copy) = nullptr;
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

TEST_F(WebViewDialog, anAnswerAfterTheWebProcessEndedIsHarmless) {
    ask("confirm('Sure?')");
    ASSERT_TRUE(waitForPanel());
    webkit_web_view_terminate_web_process(widgetOf(*view));
    ui->panels[0].confirm(true);
    view->reload();
    EXPECT_TRUE(runUntil([&] { return server.count("/page") == 2; }));
    EXPECT_TRUE(waitForTitle(*view, "/page"));
}
