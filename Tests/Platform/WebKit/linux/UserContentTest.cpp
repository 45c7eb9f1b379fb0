#include "Tests/Platform/WebKit/linux/WebViewFixture.h"

#include <utility>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

struct RecordingHandler final : ScriptMessageHandler {
    void didReceiveScriptMessage(const ScriptMessage& message) override {
        messages.push_back(message);
        if (onMessage) {
            onMessage();
        }
    }
    std::vector<ScriptMessage> messages;
    std::function<void()> onMessage;
};

class UserContent : public WebViewTest {
protected:
    UserContent() { configuration->userContentController()->addScriptMessageHandler(handler, "test"); }
    void add(const std::string& source, UserScript::InjectionTime time, bool forMainFrameOnly) {
        configuration->userContentController()->addUserScript(
            {.source = source, .injectionTime = time, .forMainFrameOnly = forMainFrameOnly});
    }
    bool waitForMessages(std::size_t count) const {
        return runUntil([&] { return handler->messages.size() >= count; });
    }
    void post(const std::string& value) {
        run(*view, "window.webkit.messageHandlers.test.postMessage(" + value + ")");
    }

    std::shared_ptr<RecordingHandler> handler = std::make_shared<RecordingHandler>();
    std::shared_ptr<WebViewConfiguration> configuration = WebViewConfiguration::create();
    std::shared_ptr<WebView> view;
};

} // namespace

TEST_F(UserContent, messagesBringJSONAlong) {
    view = makeView(configuration);
    ASSERT_TRUE(loadPage(*view, "/page"));
    const std::pair<std::string, JSONValue> values[] = {
        {"{a: 'ü', b: {c: [1, true, null]}}",
         JSONValue::Object{{"a", "ü"}, {"b", JSONValue::Object{{"c", JSONValue::Array{1, true, nullptr}}}}}},
        {"'text'", "text"},
        {"1.5", 1.5},
        {"[]", JSONValue::Array{}},
        {"null", nullptr},
        {"undefined", nullptr}};
    for (const auto& [script, value] : values) {
        const auto before = handler->messages.size();
        post(script);
        ASSERT_TRUE(waitForMessages(before + 1)) << script;
        EXPECT_EQ(handler->messages.back().name, "test");
        EXPECT_TRUE(handler->messages.back().body == value) << script;
    }
}

TEST_F(UserContent, whatJSONCannotTellIsNull) {
    view = makeView(configuration);
    ASSERT_TRUE(loadPage(*view, "/page"));
    run(*view, "var loop = {}; loop.self = loop; window.webkit.messageHandlers.test.postMessage(loop)");
    post("'after'");
    ASSERT_TRUE(runUntil(
        [&] { return !handler->messages.empty() && handler->messages.back().body == JSONValue("after"); }));
    for (std::size_t index = 0; index + 1 < handler->messages.size(); ++index) {
        EXPECT_TRUE(handler->messages[index].body.isNull());
    }
}

TEST_F(UserContent, scriptsRunBeforeThePagesOwnInEveryFrame) {
    add("window.injected = 'yes ' + (document.documentElement ? document.documentElement.outerHTML.length : "
        "0);"
        "window.webkit.messageHandlers.test.postMessage(location.pathname)",
        UserScript::InjectionTime::atDocumentStart, false);
    server.route("/frame", HTTPResponse::html("<title>Frame</title>"));
    server.route("/page",
                 HTTPResponse::html("<script>document.title = window.injected ? 'first' : 'late'</script>"
                                    "<iframe src=/frame></iframe>"));
    view = makeView(configuration);
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForTitle(*view, "first"));
    ASSERT_TRUE(waitForMessages(2));
    EXPECT_EQ(*handler->messages[0].body.string(), "/page");
    EXPECT_EQ(*handler->messages[1].body.string(), "/frame");
}

TEST_F(UserContent, scriptsOfTheMainFrameRunThereOnly) {
    add("window.webkit.messageHandlers.test.postMessage(document.title)",
        UserScript::InjectionTime::atDocumentEnd, true);
    server.route("/frame", HTTPResponse::html("<title>Frame</title>"));
    server.route("/page", HTTPResponse::html("<title>Page</title><iframe src=/frame></iframe>"));
    view = makeView(configuration);
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForTitle(*view, "Page"));
    ASSERT_TRUE(runUntil([&] { return server.count("/frame") == 1; }));
    post("'after'");
    ASSERT_TRUE(waitForMessages(2));
    EXPECT_EQ(*handler->messages[0].body.string(), "Page");
    EXPECT_EQ(*handler->messages[1].body.string(), "after");
}

TEST_F(UserContent, viewsOfAnotherConfigurationHaveNone) {
    add("window.injected = true", UserScript::InjectionTime::atDocumentStart, false);
    view = makeView();
    ASSERT_TRUE(loadPage(*view, "/page"));
    EXPECT_EQ(evaluate(*view, "typeof window.injected + ' ' + typeof (window.webkit || {}).messageHandlers"),
              "undefined undefined");
}

TEST_F(UserContent, messagesToAHandlerThatIsGoneAreDropped) {
    view = makeView(configuration);
    ASSERT_TRUE(loadPage(*view, "/page"));
    handler.reset();
    post("'nobody'");
    EXPECT_EQ(evaluate(*view, "1"), "1");
}

TEST_F(UserContent, aHandlerMayLetEverythingGo) {
    view = makeView(configuration);
    ASSERT_TRUE(loadPage(*view, "/page"));
    const std::weak_ptr<RecordingHandler> weakHandler = handler;
    const std::weak_ptr<WebView> weakView = view;
    handler->onMessage = [this] {
        view.reset();
        configuration.reset();
        handler.reset();
    };
    post("'go'");
    EXPECT_TRUE(runUntil([&] { return weakHandler.expired() && weakView.expired(); }));
}

TEST_F(UserContent, aPagesNewWindowHasTheSame) {
    std::shared_ptr<WebView> child;
    ui->onCreate = [&](const auto& given) { return child = makeView(given); };
    view = makeView(configuration);
    ASSERT_TRUE(loadPage(*view, "/page"));
    run(*view, "window.open('about:blank')");
    ASSERT_TRUE(runUntil([&] { return child != nullptr; }));
    EXPECT_EQ(child->configuration()->userContentController(), configuration->userContentController());
}
