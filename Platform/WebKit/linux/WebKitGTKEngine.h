#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/WebViewEngine.h"
#include "Platform/WebKit/linux/NativeWebView.h"
#include "Platform/WebKit/linux/Navigation.h"
#include "Platform/WebKit/linux/NavigationQuestion.h"
#include "Platform/WebKit/linux/Prewarming.h"
#include "Platform/WebKit/linux/SwipeGestures.h"
#include "Platform/WebKit/linux/WebProcessSlots.h"

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {

/// Engine implementation that drives a `WebKitWebView`.
class WebKitGTKEngine final : public WebViewEngine {
public:
    explicit WebKitGTKEngine(WebViewConfiguration& configuration);
    WebKitGTKEngine(const WebKitGTKEngine&) = delete;
    WebKitGTKEngine& operator=(const WebKitGTKEngine&) = delete;
    ~WebKitGTKEngine() override;

    void stopLoading() override;
    void setAllowsBackForwardNavigationGestures(bool allows) override { gestures_.setAllowed(allows); }
    void performEditing(Action action) override { executeEditing(view_.get(), action); }

private:
    friend class WebView;

    using Begin = std::function<void(WebKitWebView*)>;

    struct Failure {
        Error error;
        bool hasCommitted = false;
    };

    static WebKitGTKEngine& of(const WebView& view) {
        return static_cast<WebKitGTKEngine&>(WebViewEngine::of(view));
    }

    void startLoad(const URLRequest& request) override;
    void startHTML(const std::string& html, const std::optional<URL>& baseURL) override;
    void startReload() override { navigate(std::nullopt, webkit_web_view_reload); }
    void startGoingBack() override { navigate(std::nullopt, webkit_web_view_go_back); }
    void startGoingForward() override { navigate(std::nullopt, webkit_web_view_go_forward); }
    bool isLoadPending() const override { return slot_.isWaiting(); }
    bool isVisible() const override { return slot_.isVisible(); }

    std::optional<std::string> requestedURI();
    void navigate(std::optional<Navigation::Load> load, Begin begin);
    void requestSlot(Begin begin);

    void decide(const std::shared_ptr<NavigationQuestion>& question);
    void ask(const std::shared_ptr<NavigationQuestion>& question, bool isRequested);
    void answer(NavigationQuestion& question, NavigationActionPolicy policy, bool isRequested);

    void timedOut();
    void updateHistory();
    void prewarm();

    template <auto handler>
    void connect(gpointer instance, const char* signal);

    // Signal handlers of the view.

    void uriChanged(WebKitWebView*, GParamSpec*);
    void titleChanged(WebKitWebView*, GParamSpec*);
    void progressChanged(WebKitWebView*, GParamSpec*);
    void isLoadingChanged(WebKitWebView*, GParamSpec*);
    void historyChanged(WebKitBackForwardList*, WebKitBackForwardListItem*, gpointer) { updateHistory(); }
    void movedToAnotherProcess(WebKitWebView*, GParamSpec*) { slot_.processReplaced(); }
    void loadChanged(WebKitWebView*, WebKitLoadEvent event);
    gboolean loadFailed(WebKitWebView*, WebKitLoadEvent event, const char* uri, GError* error);
    gboolean decidePolicy(WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
    GtkWidget* createView(WebKitWebView*, WebKitNavigationAction* action);
    gboolean scriptDialog(WebKitWebView*, WebKitScriptDialog* dialog);
    void closeRequested(WebKitWebView*) { closed(); }
    void webProcessTerminated(WebKitWebView*, WebKitWebProcessTerminationReason);
    void mapped(WebKitWebView*);
    void unmapped(WebKitWebView*) { slot_.setVisible(false); }

    GObjectPtr<WebKitWebView> view_;
    Navigation navigation_;
    /// The failure to report at WEBKIT_LOAD_FINISHED, which follows every failed load.
    std::optional<Failure> failure_;
    WebProcessSlot slot_;
    SwipeGestures gestures_;
    std::optional<Prewarming> prewarming_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
