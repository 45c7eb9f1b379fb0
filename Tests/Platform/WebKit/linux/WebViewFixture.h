#pragma once

#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/Foundation/Timer.h"
#include "Platform/WebKit/WebView.h"
#include "Platform/WebKit/linux/WebProcessSlots.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/WebProcesses.h"
#include "Tests/Support/linux/MainLoop.h"

#include <gtest/gtest.h>
#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A navigation delegate that records the failures that it receives.
struct RecordingNavigationDelegate final : Platform::NavigationDelegate {
    void didFailNavigation(Platform::WebView& webView, const Platform::Error& error) override;
    void didFailProvisionalNavigation(Platform::WebView& webView, const Platform::Error& error) override;

    struct Failure {
        bool provisional = false;
        Platform::Error error;
        /// The view's URL and loading state when the failure was reported.
        std::optional<Platform::URL> url;
        bool isLoading = false;
    };
    std::vector<Failure> failures;
    /// If set, called after a failure has been recorded.
    std::function<void()> onFailure;
};

/// A UI delegate that records the windows and panels that pages request. The test responds through `onCreate`
/// and the completion handlers of the panels.
struct RecordingUIDelegate final : Platform::UIDelegate {
    std::shared_ptr<Platform::WebView>
    createWebView(Platform::WebView& webView,
                  const std::shared_ptr<Platform::WebViewConfiguration>& configuration,
                  const Platform::NavigationAction& action) override;
    void runJavaScriptAlertPanel(Platform::WebView& webView, const std::string& message,
                                 const Platform::FrameInfo& frame, std::function<void()> completion) override;
    void runJavaScriptConfirmPanel(Platform::WebView& webView, const std::string& message,
                                   const Platform::FrameInfo& frame,
                                   std::function<void(bool)> completion) override;

    std::function<std::shared_ptr<Platform::WebView>(const std::shared_ptr<Platform::WebViewConfiguration>&)>
        onCreate;
    std::vector<Platform::NavigationAction> windows;

    struct Panel {
        std::string message;
        std::optional<Platform::URL> url;
        std::function<void()> alert;
        std::function<void(bool)> confirm;
    };
    std::vector<Panel> panels;
    /// If set, called after a panel has been recorded.
    std::function<void()> onPanel;
};

/// A plain GTK window that contains one web view.
class TestWindow {
public:
    explicit TestWindow(Platform::WebView& view);
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow();

    void show();
    void hide();

private:
    Platform::GObjectPtr<GtkWidget> window_;
};

class WebViewTest : public testing::Test {
public:
    WebViewTest(const WebViewTest&) = delete;
    WebViewTest& operator=(const WebViewTest&) = delete;
    ~WebViewTest() override;

protected:
    WebViewTest();

    using Property = Platform::WebView::Property;

    /// Creates a view with the delegates `navigation` and `ui`. Its web process uses one of `slots`.
    std::shared_ptr<Platform::WebView> makeView();
    std::shared_ptr<Platform::WebView>
    makeView(const std::shared_ptr<Platform::WebViewConfiguration>& configuration);

    /// Limits the number of web processes used by views that are created after this call. Then calls `SetUp`
    /// again to recreate the fixture's views.
    void limitProcesses(std::size_t limit);

    /// The URL as a string, or an empty string if the URL is absent.
    static std::string textOf(const std::optional<Platform::URL>& url);
    static std::string urlOf(const Platform::WebView& view) { return textOf(view.url()); }

    static WebKitWebView* widgetOf(Platform::WebView& view);
    static Platform::URLRequest request(const std::string& url, double timeoutInterval = 60);

    /// Loads a page with the title `path` from the server and waits until it is loaded.
    [[nodiscard]] bool loadPage(Platform::WebView& view, const std::string& path);
    /// Runs a script in the page. Returns its result as a string, or the error message if the script throws
    /// an exception.
    static std::string evaluate(Platform::WebView& view, const std::string& script);
    /// Runs a script in the page without waiting for the result.
    static void run(Platform::WebView& view, const std::string& script);
    [[nodiscard]] static bool waitForTitle(Platform::WebView& view, const std::string& title);
    [[nodiscard]] bool waitForFailures(std::size_t count) const;
    /// Calls `body` and exits. The exit status is nonzero if an assertion has failed. Call this function in
    /// the statement of `EXPECT_EXIT`, with `succeeds` as the predicate.
    ///
    /// A process creates its default data store only once. Tests of the store's creation select the
    /// "threadsafe" style of death tests, in which the statement runs in a new process with its own display
    /// session and an empty home directory.
    [[noreturn]] static void exitAfter(const std::function<void()>& body);
    static const testing::ExitedWithCode succeeds;

    /// Runs the main loop for `seconds`. Used to test that something does not happen.
    static void runFor(double seconds);

    TestSupport::HTTPServer server;
    std::shared_ptr<Platform::WebProcessSlots> slots = Platform::WebProcessSlots::shared();
    std::shared_ptr<RecordingNavigationDelegate> navigation = std::make_shared<RecordingNavigationDelegate>();
    std::shared_ptr<RecordingUIDelegate> ui = std::make_shared<RecordingUIDelegate>();
};
