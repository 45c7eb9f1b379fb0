#include "Platform/WebKit/linux/WebKitGTKEngine.h"

#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/WebKit/linux/LoadError.h"
#include "Platform/WebKit/linux/NativeWebView.h"
#include "Platform/WebKit/linux/RestrictedPort.h"
#include "Platform/WebKit/linux/SafeAnswers.h"
#include "Platform/WebKit/linux/ScriptDialog.h"
#include "Platform/WebKit/linux/WebViewConfigurationNative.h"

#include <utility>

namespace Platform {

namespace {

/// Seconds to wait for the cancellation of a load that timed out. WebKitGTK reports none if its web process
/// hangs.
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
    , place_(*this)
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
    // After ours, for the first answer counts.
    giveSafeAnswers(view);
}

WebKitGTKEngine::~WebKitGTKEngine() {
    // The view may be let go from inside one of the widget's signals, whose emitter still works with the
    // widget when the handler returns. Not when the loop is idle: a page that asks forever, and now gets its
    // answers at once, never lets it be.
    g_idle_add_full(G_PRIORITY_HIGH, releaseLater, g_object_ref(view_.get()), g_object_unref);
}

std::unique_ptr<View::Native> WebView::makeNative() {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(GTK_WIDGET(WebKitGTKEngine::of(*this).view_.get()));
    return native;
}

// Values

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
    } else if (!navigation_.isRequested()) { // otherwise it is the navigation before that is given up
        navigation_.end();
    }
    update(&Values::isLoading, isLoading, Property::isLoading);
}

void WebKitGTKEngine::historyChanged(WebKitBackForwardList* /*list*/, WebKitBackForwardListItem* /*added*/,
                                     gpointer /*removed*/) {
    updateHistory();
}

void WebKitGTKEngine::updateHistory() {
    update(&Values::canGoBack, webkit_web_view_can_go_back(view_.get()) == TRUE, Property::canGoBack);
    update(&Values::canGoForward, webkit_web_view_can_go_forward(view_.get()) == TRUE,
           Property::canGoForward);
}

// Navigation

void WebKitGTKEngine::navigate(std::optional<Navigation::Load> load, std::function<void()> begin) {
    navigation_.request(std::move(load), values().url);
    beginWithProcess(std::move(begin));
}

/// Calls `begin` once there may be a web process for it.
void WebKitGTKEngine::beginWithProcess(std::function<void()> begin) {
    place_.begin([this, begin = std::move(begin)] {
        const auto keptAlive = keepAlive();
        begin();
    });
    // Not at once: of many tabs that are opened together each is in sight, until the next one is.
    if (place_.isWaiting()) {
        catchUpSoon();
    }
}

void WebKitGTKEngine::startLoad(const URLRequest& request) {
    auto uri = engineText(request.url);
    LoadTimeout timeout(request.timeoutInterval, [this] {
        if (const auto keptAlive = keepAlive()) {
            timedOut();
        }
    });
    navigate(Navigation::Load{uri, std::move(timeout)}, [this, uri] {
        if (auto* load = navigation_.load()) {
            load->timeout.start();
        }
        webkit_web_view_load_uri(view_.get(), uri.c_str());
    });
    if (place_.isWaiting()) {
        urlChanged(URL::fromString(uri));
    }
}

void WebKitGTKEngine::startHTML(const std::string& html, const std::optional<URL>& baseURL) {
    navigate(std::nullopt, [this, html, baseURL] {
        webkit_web_view_load_html(view_.get(), html.c_str(),
                                  baseURL ? baseURL->absoluteString().c_str() : nullptr);
    });
}

void WebKitGTKEngine::startReload() {
    navigate(std::nullopt, [this] { webkit_web_view_reload(view_.get()); });
}

void WebKitGTKEngine::startGoingBack() {
    navigate(std::nullopt, [this] { webkit_web_view_go_back(view_.get()); });
}

void WebKitGTKEngine::startGoingForward() {
    navigate(std::nullopt, [this] { webkit_web_view_go_forward(view_.get()); });
}

std::optional<std::string> WebKitGTKEngine::requestedURI() {
    // The view's own URI may be that of the previous page if WebKitGTK has just dropped an earlier load.
    const auto* load = navigation_.load();
    return load ? load->uri : uriOf(view_.get());
}

void WebKitGTKEngine::stopLoading() {
    auto* load = navigation_.load();
    if (place_.isWaiting()) {
        const auto shownURL = navigation_.shownURL(values().url);
        place_.stopWaiting();
        navigation_.end();
        update(&Values::url, shownURL, Property::url);
        return;
    }
    // Before the policy question, WebKitGTK drops the navigation but reports it as loading forever. Cancel it
    // at the question.
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
    place_.started();
    auto* load = navigation_.load();
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        // It may have timed out since the policy question.
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

// Policy

gboolean WebKitGTKEngine::decidePolicy(WebKitWebView* /*view*/, WebKitPolicyDecision* decision,
                                       WebKitPolicyDecisionType type) {
    if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        return FALSE;
    }
    place_.started();
    const auto question = std::make_shared<NavigationQuestion>(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    if (type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
        ask(question, false);
        return TRUE;
    }
    const bool isFirstOfWindow = navigation_.isNewWindow();
    if (isFirstOfWindow) {
        navigation_.use();
    }
    // WebKitGTK itself loads the page of a window without an opener, and starts a process for it once the
    // question is answered.
    if (isFirstOfWindow && uriOf(view_.get())) {
        place_.leave();
        beginWithProcess([this, question] { decide(question); });
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

// Failures

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

// New windows and dialogs

GtkWidget* WebKitGTKEngine::createView(WebKitWebView* view, WebKitNavigationAction* action) {
    const auto configuration = newWindowConfiguration(view, *keepAlive()->configuration());
    const auto child = createWebView(configuration, navigationAction(action));
    configuration->native().opener.reset();
    if (!child) {
        return nullptr;
    }
    auto& engine = of(*child);
    engine.navigation_.openWindow();
    engine.place_.share(place_);
    // Borrowed: the emission adds a reference, which WebKitGTK never releases.
    return GTK_WIDGET(engine.view_.get());
}

gboolean WebKitGTKEngine::scriptDialog(WebKitWebView* /*view*/, WebKitScriptDialog* dialog) {
    const std::string message = webkit_script_dialog_get_message(dialog);
    // While a navigation is under way, the view's URL may be that of the next page.
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

// The web process

void WebKitGTKEngine::webProcessTerminated(WebKitWebView* /*view*/,
                                           WebKitWebProcessTerminationReason /*reason*/) {
    std::optional<URLRequest> interrupted;
    if (const auto* load = navigation_.load()) {
        if (const auto url = URL::fromString(load->uri)) {
            interrupted = URLRequest{.url = *url, .timeoutInterval = load->timeout.interval()};
        }
    } else if (values().url && (navigation_.isNewWindow() || place_.isWaiting())) {
        interrupted = URLRequest{.url = *values().url, .timeoutInterval = 0};
    }
    place_.leave();
    place_.stopWaiting();
    navigation_.abandon();
    webProcessEnded(WebProcessPlace::isMakingRoom() ? WebProcessRecovery::Cause::eviction
                                                    : WebProcessRecovery::Cause::failure,
                    std::move(interrupted));
}

bool WebKitGTKEngine::isVisible() const { return gtk_widget_get_mapped(GTK_WIDGET(view_.get())) == TRUE; }

bool WebKitGTKEngine::mayGiveWay() const {
    return !isVisible() && !webkit_web_view_is_playing_audio(view_.get()) && !hasOpenPanels();
}

void WebKitGTKEngine::giveWay() {
    if (const auto keptAlive = keepAlive()) {
        webkit_web_view_terminate_web_process(view_.get());
    }
}

void WebKitGTKEngine::mapped(WebKitWebView* view) {
    place_.seen();
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
    if (place_.takeNow()) {
        startWebProcess(view_.get(), [this, weak = weak_from_this()] {
            if (const auto engine = weak.lock()) {
                place_.started();
            }
        });
    }
}

} // namespace Platform
