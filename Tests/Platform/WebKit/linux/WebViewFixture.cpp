#include "Tests/Platform/WebKit/linux/WebViewFixture.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/WebKit/linux/WebViewConfigurationNative.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/linux/ForgetPages.h"

#include <cstdlib>
#include <utility>

using namespace Platform;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

void RecordingNavigationDelegate::didFailNavigation(WebView& webView, const Error& error) {
    failures.push_back(
        {.provisional = false, .error = error, .url = webView.url(), .isLoading = webView.isLoading()});
    if (onFailure) {
        onFailure();
    }
}

void RecordingNavigationDelegate::didFailProvisionalNavigation(WebView& webView, const Error& error) {
    failures.push_back(
        {.provisional = true, .error = error, .url = webView.url(), .isLoading = webView.isLoading()});
    if (onFailure) {
        onFailure();
    }
}

std::shared_ptr<WebView>
RecordingUIDelegate::createWebView(WebView& /*webView*/,
                                   const std::shared_ptr<WebViewConfiguration>& configuration,
                                   const NavigationAction& action) {
    windows.push_back(action);
    return onCreate ? onCreate(configuration) : nullptr;
}

void RecordingUIDelegate::runJavaScriptAlertPanel(WebView& /*webView*/, const std::string& message,
                                                  const FrameInfo& frame, std::function<void()> completion) {
    panels.push_back({.message = message, .url = frame.url, .alert = std::move(completion), .confirm = {}});
    if (onPanel) {
        onPanel();
    }
}

void RecordingUIDelegate::runJavaScriptConfirmPanel(WebView& /*webView*/, const std::string& message,
                                                    const FrameInfo& frame,
                                                    std::function<void(bool)> completion) {
    panels.push_back({.message = message, .url = frame.url, .alert = {}, .confirm = std::move(completion)});
    if (onPanel) {
        onPanel();
    }
}

TestWindow::TestWindow(WebView& view)
    : window_(GObjectPtr<GtkWidget>::retain(gtk_window_new())) {
    gtk_window_set_default_size(GTK_WINDOW(window_.get()), 640, 480);
    gtk_window_set_child(GTK_WINDOW(window_.get()), view.native().widget.get());
}

TestWindow::~TestWindow() {
    gtk_window_set_child(GTK_WINDOW(window_.get()), nullptr);
    gtk_window_destroy(GTK_WINDOW(window_.get()));
}

void TestWindow::show() {
    gtk_window_present(GTK_WINDOW(window_.get()));
    EXPECT_TRUE(runUntil(
        [this] { return gtk_widget_get_mapped(gtk_window_get_child(GTK_WINDOW(window_.get()))) == TRUE; }));
}

void TestWindow::hide() { gtk_widget_set_visible(window_.get(), FALSE); }

namespace {

/// The network sessions of the views that the current test has created.
std::vector<GObjectPtr<WebKitNetworkSession>>& usedSessions() {
    static std::vector<GObjectPtr<WebKitNetworkSession>> sessions;
    return sessions;
}

} // namespace

WebViewTest::WebViewTest() { gtk_init(); }

WebViewTest::~WebViewTest() {
    TestSupport::runPending();
    // WebKitGTK caches web processes for in-memory data stores too, so clear all sessions of the test.
    const auto sessions = std::exchange(usedSessions(), {});
    // Do not wait for the web processes to exit if this is the only test that the process runs.
    const bool isOnlyTest = testing::UnitTest::GetInstance()->test_to_run_count() == 1;
    EXPECT_TRUE(isOnlyTest || TestSupport::forgetPages(sessions));
}

std::shared_ptr<WebView> WebViewTest::makeView() {
    const auto configuration = WebViewConfiguration::create();
    configuration->native().slots = slots;
    return makeView(configuration);
}

std::shared_ptr<WebView> WebViewTest::makeView(const std::shared_ptr<WebViewConfiguration>& configuration) {
    auto view = WebView::create(configuration);
    view->setNavigationDelegate(navigation);
    view->setUIDelegate(ui);
    usedSessions().push_back(
        GObjectPtr<WebKitNetworkSession>::retain(webkit_web_view_get_network_session(widgetOf(*view))));
    return view;
}

void WebViewTest::limitProcesses(std::size_t limit) {
    slots = std::make_shared<WebProcessSlots>(limit, 10);
    SetUp();
}

std::string WebViewTest::textOf(const std::optional<URL>& url) { return url ? url->absoluteString() : ""; }

WebKitWebView* WebViewTest::widgetOf(WebView& view) { return WEBKIT_WEB_VIEW(view.native().widget.get()); }

URLRequest WebViewTest::request(const std::string& url, double timeoutInterval) {
    auto parsed = URL::fromString(url);
    if (!parsed) {
        fatalError("A test's URL does not parse: " + url);
    }
    return {.url = *std::move(parsed), .timeoutInterval = timeoutInterval};
}

bool WebViewTest::loadPage(WebView& view, const std::string& path) {
    server.route(path, HTTPResponse::page(path));
    view.load(request(server.url(path)));
    return waitForTitle(view, path);
}

std::string WebViewTest::evaluate(WebView& view, const std::string& script) {
    struct Answer {
        bool isThere = false;
        std::string text;
    } answer;
    webkit_web_view_evaluate_javascript(
        widgetOf(view), script.c_str(), -1, nullptr, nullptr, nullptr,
        [](GObject* source, GAsyncResult* result, gpointer data) {
            auto& answer = *static_cast<Answer*>(data);
            g_autoptr(GError) error = nullptr;
            g_autoptr(JSCValue) value =
                webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(source), result, &error);
            g_autofree char* text = value ? jsc_value_to_string(value) : nullptr;
            answer.text = text ? text : error ? error->message : "";
            answer.isThere = true;
        },
        &answer);
    if (!runUntil([&answer] { return answer.isThere; })) {
        ADD_FAILURE() << "no answer to " << script;
    }
    return answer.text;
}

void WebViewTest::run(WebView& view, const std::string& script) {
    webkit_web_view_evaluate_javascript(widgetOf(view), script.c_str(), -1, nullptr, nullptr, nullptr,
                                        nullptr, nullptr);
}

bool WebViewTest::waitForTitle(WebView& view, const std::string& title) {
    return runUntil([&] { return view.title() == title && !view.isLoading(); });
}

bool WebViewTest::waitForFailures(std::size_t count) const {
    return runUntil([&] { return navigation->failures.size() >= count; });
}

const testing::ExitedWithCode WebViewTest::succeeds(EXIT_SUCCESS);

void WebViewTest::exitAfter(const std::function<void()>& body) {
    body();
    std::exit(HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

void WebViewTest::runFor(double seconds) {
    bool isOver = false;
    const auto timer = Timer::scheduled(seconds, false, [&isOver] { isOver = true; });
    EXPECT_TRUE(runUntil([&isOver] { return isOver; }));
}
