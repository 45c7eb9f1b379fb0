#include "Platform/WebKit/linux/WebKitGTKEngine.h"

#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/WebKit/linux/LoadError.h"
#include "Platform/WebKit/linux/SafeAnswers.h"
#include "Platform/WebKit/linux/ScriptDialog.h"
#include "Platform/WebKit/linux/WebViewConfigurationNative.h"

#include <utility>

namespace Platform {

namespace {

/// The time to wait, in seconds, for WebKitGTK to report the cancellation of a load that timed out. WebKitGTK
/// does not report a cancellation while the web process hangs.
constexpr Timer::Interval cancellationLimit = 1;

gboolean releaseLater(gpointer /*view*/) { return G_SOURCE_REMOVE; }

} // namespace

std::shared_ptr<WebViewEngine> WebViewEngine::create(WebViewConfiguration& configuration) {
    return std::make_shared<WebKitGTKEngine>(configuration);
}

template <auto handler>
void WebKitGTKEngine::connect(gpointer instance, const char* signal) {
    connections_.push_back(connectSignal<handler>(instance, signal, *this));
}

WebKitGTKEngine::WebKitGTKEngine(WebViewConfiguration& configuration)
    : view_(makeNativeWebView(configuration))
    , slot_(
          configuration.native().slots,
          [this] { return !webkit_web_view_is_playing_audio(view_.get()) && !hasOpenPanels(); },
          [this] {
              const auto keptAlive = keepAlive();
              webkit_web_view_terminate_web_process(view_.get());
          })
    , gestures_(view_.get()) {
    using Engine = WebKitGTKEngine;
    auto* view = view_.get();
    connect<&Engine::uriChanged>(view, "notify::uri");
    connect<&Engine::titleChanged>(view, "notify::title");
    connect<&Engine::progressChanged>(view, "notify::estimated-load-progress");
    connect<&Engine::isLoadingChanged>(view, "notify::is-loading");
    connect<&Engine::historyChanged>(webkit_web_view_get_back_forward_list(view), "changed");
    connect<&Engine::movedToAnotherProcess>(view, "notify::page-id");
    connect<&Engine::loadChanged>(view, "load-changed");
    connect<&Engine::loadFailed>(view, "load-failed");
    connect<&Engine::decidePolicy>(view, "decide-policy");
    connect<&Engine::createView>(view, "create");
    connect<&Engine::scriptDialog>(view, "script-dialog");
    connect<&Engine::closeRequested>(view, "close");
    connect<&Engine::webProcessTerminated>(view, "web-process-terminated");
    connect<&Engine::mapped>(view, "map");
    connect<&Engine::unmapped>(view, "unmap");
    // Connect the fallback handlers last, because only the first handler that handles a signal has an effect.
    giveSafeAnswers(view);
}

WebKitGTKEngine::~WebKitGTKEngine() {
    // Keep the widget alive until the main loop runs again, because a handler of one of its signals may
    // release the view during the emission. Do not use idle priority, because an idle source might never run
    // while a page opens panels in an endless loop.
    g_idle_add_full(G_PRIORITY_HIGH, releaseLater, g_object_ref(view_.get()), g_object_unref);
}

std::unique_ptr<View::Native> WebView::makeNative() {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(GTK_WIDGET(WebKitGTKEngine::of(*this).view_.get()));
    return native;
}

void WebKitGTKEngine::uriChanged(WebKitWebView* /*view*/, GParamSpec* /*property*/) {
    const auto text = uriOf(view_.get());
    urlChanged(text ? URL::fromString(*text) : std::nullopt);
}

void WebKitGTKEngine::titleChanged(WebKitWebView* view, GParamSpec* /*property*/) {
    WebViewEngine::titleChanged(titleOf(view));
}

void WebKitGTKEngine::progressChanged(WebKitWebView* view, GParamSpec* /*property*/) {
    update(&Values::estimatedProgress, webkit_web_view_get_estimated_load_progress(view),
           Property::estimatedProgress);
}

void WebKitGTKEngine::isLoadingChanged(WebKitWebView* view, GParamSpec* /*property*/) {
    const bool isLoading = webkit_web_view_is_loading(view) == TRUE;
    if (isLoading) {
        pageReturned();
    } else if (!navigation_.isRequested()) { // If a request is pending, an earlier navigation has ended.
        navigation_.end();
    }
    update(&Values::isLoading, isLoading, Property::isLoading);
}

void WebKitGTKEngine::updateHistory() {
    update(&Values::canGoBack, webkit_web_view_can_go_back(view_.get()) == TRUE, Property::canGoBack);
    update(&Values::canGoForward, webkit_web_view_can_go_forward(view_.get()) == TRUE,
           Property::canGoForward);
}

void WebKitGTKEngine::navigate(std::optional<Navigation::Load> load, Begin begin) {
    navigation_.request(std::move(load), values().url);
    requestSlot(std::move(begin));
}

/// Calls `begin` once the view's slot holds a web process.
void WebKitGTKEngine::requestSlot(Begin begin) {
    slot_.request([this, begin = std::move(begin)] {
        const auto keptAlive = keepAlive();
        begin(view_.get());
    });
}

void WebKitGTKEngine::startLoad(const URLRequest& request) {
    auto uri = engineText(request.url);
    LoadTimeout timeout(request.timeoutInterval, [this] {
        if (const auto keptAlive = keepAlive()) {
            timedOut();
        }
    });
    navigate(Navigation::Load{uri, std::move(timeout)}, [this, uri](WebKitWebView* view) {
        if (auto* load = navigation_.load()) {
            load->timeout.start();
        }
        webkit_web_view_load_uri(view, uri.c_str());
    });
    if (slot_.isWaiting()) {
        urlChanged(URL::fromString(uri));
    }
}

void WebKitGTKEngine::startHTML(const std::string& html, const std::optional<URL>& baseURL) {
    navigate(std::nullopt, [html, baseURL](WebKitWebView* view) {
        webkit_web_view_load_html(view, html.c_str(), baseURL ? baseURL->absoluteString().c_str() : nullptr);
    });
}

std::optional<std::string> WebKitGTKEngine::requestedURI() {
    // The view may report the URI of the previous page if WebKitGTK has just discarded an earlier load.
    const auto* load = navigation_.load();
    return load ? load->uri : uriOf(view_.get());
}

void WebKitGTKEngine::stopLoading() {
    auto* load = navigation_.load();
    if (slot_.isWaiting()) {
        const auto shownURL = navigation_.shownURL(values().url);
        slot_.cancelRequest();
        navigation_.end();
        update(&Values::url, shownURL, Property::url);
        return;
    }
    // If a navigation is stopped before its policy decision is requested, WebKitGTK 2.50.6 drops it but keeps
    // `is-loading` set (not reported). Cancel it when the decision is requested.
    if (values().isLoading || load) {
        if (const auto requested = requestedURI()) {
            navigation_.stop(*requested);
        }
    }
    if (load) {
        load->timeout.stop();
    }
    webkit_web_view_stop_loading(view_.get());
}

void WebKitGTKEngine::loadChanged(WebKitWebView* /*view*/, WebKitLoadEvent event) {
    slot_.processStarted();
    auto* load = navigation_.load();
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        // The load may have timed out since its policy decision was requested.
        if (navigation_.start(values().url) && navigation_.load() &&
            navigation_.load()->timeout.hasExpired()) {
            timedOut();
        }
        break;
    case WEBKIT_LOAD_REDIRECTED:
        if (load && navigation_.hasStarted()) {
            load->uri = uriOf(view_.get()).value_or(load->uri);
            load->timeout.restart();
        }
        break;
    case WEBKIT_LOAD_COMMITTED:
        navigation_.commit();
        committed();
        WebViewEngine::titleChanged(titleOf(view_.get()));
        updateHistory();
        break;
    case WEBKIT_LOAD_FINISHED:
        updateHistory();
        if (const auto failure = std::exchange(failure_, std::nullopt)) {
            report(failure->error, failure->hasCommitted);
        } else {
            finished();
        }
        break;
    }
}

gboolean WebKitGTKEngine::decidePolicy(WebKitWebView* /*view*/, WebKitPolicyDecision* decision,
                                       WebKitPolicyDecisionType type) {
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        return FALSE;
    }
    slot_.processStarted();
    const auto question = std::make_shared<NavigationQuestion>(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    if (type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
        ask(question, false);
        return TRUE;
    }
    const bool isFirstOfWindow = navigation_.isNewWindow();
    if (isFirstOfWindow) {
        navigation_.use();
    }
    // For `noopener` windows, WebKitGTK starts a process after the decision, so wait for a slot first.
    if (isFirstOfWindow && uriOf(view_.get())) {
        slot_.release();
        requestSlot([this, question](WebKitWebView*) { decide(question); });
    } else {
        decide(question);
    }
    return TRUE;
}

void WebKitGTKEngine::decide(const std::shared_ptr<NavigationQuestion>& question) {
    if (navigation_.isStopped(question->uri())) {
        navigation_.end();
        question->answer(NavigationActionPolicy::cancel);
        return;
    }
    const bool isRequested = navigation_.isRequested() && requestedURI() == question->uri();
    const bool needsNoQuestion = isOwnPage(question->action(), question->isRedirect());
    if (isRequested || needsNoQuestion) {
        navigation_.decide();
    }
    if (needsNoQuestion) {
        question->answer(NavigationActionPolicy::allow);
    } else {
        ask(question, isRequested);
    }
}

void WebKitGTKEngine::ask(const std::shared_ptr<NavigationQuestion>& question, bool isRequested) {
    WebViewEngine::decidePolicy(
        question->action(),
        std::make_shared<PolicyReply>(
            [this, question, isRequested, weak = weak_from_this()](NavigationActionPolicy policy) {
                const auto engine = weak.lock();
                if (engine && engine->keepAlive()) {
                    answer(*question, policy, isRequested);
                }
            },
            NavigationActionPolicy::cancel));
}

void WebKitGTKEngine::answer(NavigationQuestion& question, NavigationActionPolicy policy, bool isRequested) {
    const bool isRestricted =
        policy == NavigationActionPolicy::allow && usesRestrictedPort(question.uri().c_str());
    if (!isRestricted) {
        question.answer(policy);
        return;
    }
    auto* expected = navigation_.expectedFailure();
    if (question.isRedirect() && expected) {
        expected->refusedRedirect = question.uri();
    }
    if (isRequested) {
        navigation_.end();
    }
    question.answer(NavigationActionPolicy::cancel);
    if (isRequested) {
        report(restrictedPortError(question.uri()), false);
    }
}

gboolean WebKitGTKEngine::loadFailed(WebKitWebView* /*view*/, WebKitLoadEvent event, const char* uri,
                                     GError* error) {
    updateHistory();
    failed();
    if (const auto failure = loadError(*error, uri)) {
        failure_ = Failure{.error = navigation_.nameFailure(*failure),
                           .hasCommitted = event == WEBKIT_LOAD_COMMITTED};
    }
    return TRUE;
}

void WebKitGTKEngine::timedOut() {
    if (!values().isLoading && !navigation_.isRequested()) {
        return;
    }
    const auto* load = navigation_.load();
    const auto failingURL = load ? std::optional(load->uri) : std::nullopt;
    const bool willFail = navigation_.hasStarted();
    stopLoading();
    auto* expected = navigation_.expectedFailure();
    if (!willFail || !expected) {
        report(timedOutError(failingURL), false);
        return;
    }
    expected->cancellation = Timer::scheduled(cancellationLimit, false, [this, failingURL] {
        const auto keptAlive = keepAlive();
        if (auto* unconfirmed = keptAlive ? navigation_.expectedFailure() : nullptr) {
            unconfirmed->cancellation.reset();
            report(timedOutError(failingURL), false);
        }
    });
}

GtkWidget* WebKitGTKEngine::createView(WebKitWebView* view, WebKitNavigationAction* action) {
    const auto configuration = newWindowConfiguration(view, *keepAlive()->configuration());
    const auto child = createWebView(configuration, navigationAction(action));
    configuration->native().opener.reset();
    if (!child) {
        return nullptr;
    }
    auto& engine = of(*child);
    engine.navigation_.openWindow();
    engine.slot_.share(slot_);
    // Return a borrowed reference: the signal emission adds a reference that WebKitGTK never releases.
    return GTK_WIDGET(engine.view_.get());
}

gboolean WebKitGTKEngine::scriptDialog(WebKitWebView* /*view*/, WebKitScriptDialog* dialog) {
    const std::string message = webkit_script_dialog_get_message(dialog);
    // During a navigation, the view may already report the URL of the next page.
    const FrameInfo frame{.url = navigation_.shownURL(values().url)};
    switch (webkit_script_dialog_get_dialog_type(dialog)) {
    case WEBKIT_SCRIPT_DIALOG_ALERT:
        runAlertPanel(message, frame, alertReply(dialog));
        return TRUE;
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
        runConfirmPanel(message, frame, confirmReply(dialog));
        return TRUE;
    default:
        return FALSE;
    }
}

void WebKitGTKEngine::webProcessTerminated(WebKitWebView* /*view*/,
                                           WebKitWebProcessTerminationReason /*reason*/) {
    const auto* load = navigation_.load();
    const auto url = load ? URL::fromString(load->uri) : values().url;
    std::optional<URLRequest> interrupted;
    if (url && (load || navigation_.isNewWindow() || slot_.isWaiting())) {
        interrupted = URLRequest{.url = *url, .timeoutInterval = load ? load->timeout.interval() : 0};
    }
    slot_.release();
    slot_.cancelRequest();
    navigation_.abandon();
    webProcessEnded(slot_.isEvicting() ? WebProcessRecovery::Cause::eviction
                                       : WebProcessRecovery::Cause::failure,
                    std::move(interrupted));
}

void WebKitGTKEngine::mapped(WebKitWebView* view) {
    slot_.setVisible(true);
    catchUpSoon();
    if (navigation_.isFresh()) {
        prewarming_.emplace(GTK_WIDGET(view), [this] { prewarm(); });
    }
}

void WebKitGTKEngine::prewarm() {
    if (!navigation_.isFresh()) {
        return;
    }
    navigation_.use();
    if (slot_.tryAcquire()) {
        startWebProcess(view_.get(), [this, weak = weak_from_this()] {
            if (const auto engine = weak.lock()) {
                slot_.processStarted();
            }
        });
    }
}

} // namespace Platform
