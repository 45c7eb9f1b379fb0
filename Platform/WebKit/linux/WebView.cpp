#include "Platform/WebKit/WebView.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/ObserverList.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/Timer.h"
#include "Platform/WebKit/OwnPagePass.h"
#include "Platform/WebKit/linux/LoadError.h"
#include "Platform/WebKit/linux/NavigationQuestion.h"
#include "Platform/WebKit/linux/NetworkSession.h"
#include "Platform/WebKit/linux/RestrictedPort.h"
#include "Platform/WebKit/linux/SafeAnswers.h"
#include "Platform/WebKit/linux/ScriptDialog.h"
#include "Platform/WebKit/linux/UserContentControllerNative.h"
#include "Platform/WebKit/linux/WebProcessPlace.h"
#include "Platform/WebKit/linux/WebViewConfigurationNative.h"

#include <webkit/webkit.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace Platform {

namespace {

using Clock = std::chrono::steady_clock;

/// After an end of the web process so soon behind the one before, the page itself is to blame: reloading it
/// would only repeat it.
constexpr auto processEndsInARow = std::chrono::minutes(1);

/// How long the engine may take to confirm that it stopped a load whose time was up. It does not when its web
/// process hangs.
constexpr Timer::Interval stopLimit = 1;

GObjectPtr<WebKitSettings> makeSettings() {
    auto settings = GObjectPtr<WebKitSettings>::adopt(webkit_settings_new());
    webkit_settings_set_javascript_can_open_windows_automatically(settings.get(), TRUE);
    webkit_settings_set_enable_fullscreen(settings.get(), FALSE);
    return settings;
}

/// The engine looks up its key bindings in a text widget inside its view, which must not be where Tab leads
/// from a page's last link: there the keyboard would be caught.
void keepFocusFromInnerWidgets(GtkWidget* view) {
    for (GtkWidget* child = gtk_widget_get_first_child(view); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_TEXT_VIEW(child)) {
            gtk_widget_set_can_focus(child, FALSE);
        }
    }
}

GObjectPtr<WebKitWebView> makeWebKitView(WebViewConfiguration& configuration) {
    const auto settings = makeSettings();
    auto* manager = configuration.userContentController()->native().manager.get();
    gpointer object = nullptr;
    if (const auto opener = std::exchange(configuration.native().opener, {})) {
        // The session goes with the opener; giving it once more is an error.
        object = g_object_new(WEBKIT_TYPE_WEB_VIEW, "related-view", opener.get(), "settings", settings.get(),
                              "user-content-manager", manager, nullptr);
    } else {
        const auto session = networkSession(configuration.websiteDataStore());
        object = g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.get(), "settings",
                              settings.get(), "user-content-manager", manager, nullptr);
    }
    keepFocusFromInnerWidgets(GTK_WIDGET(object));
    return GObjectPtr<WebKitWebView>::retain(WEBKIT_WEB_VIEW(object));
}

std::optional<std::string> nonEmpty(const char* text) {
    return text && *text ? std::optional<std::string>(text) : std::nullopt;
}

/// The editing command of an action, or nothing.
const char* editingCommand(Action action) {
    switch (action) {
    case Action::undo:
        return WEBKIT_EDITING_COMMAND_UNDO;
    case Action::redo:
        return WEBKIT_EDITING_COMMAND_REDO;
    case Action::cut:
        return WEBKIT_EDITING_COMMAND_CUT;
    case Action::copy:
        return WEBKIT_EDITING_COMMAND_COPY;
    case Action::paste:
        return WEBKIT_EDITING_COMMAND_PASTE;
    case Action::selectAll:
        return WEBKIT_EDITING_COMMAND_SELECT_ALL;
    default:
        return nullptr;
    }
}

/// `url` as the engine will write it.
std::string engineText(const URL& url) {
    const auto request =
        GObjectPtr<WebKitURIRequest>::adopt(webkit_uri_request_new(url.absoluteString().c_str()));
    return webkit_uri_request_get_uri(request.get());
}

gboolean releaseLater(gpointer /*view*/) { return G_SOURCE_REMOVE; }

} // namespace

/// What connects the view with the engine's widget. It ends with the view, and all its handlers with it; the
/// widget may live on while the toolkit holds it.
struct WebView::Engine final : std::enable_shared_from_this<Engine>, WebProcessUser {
    Engine(WebView& owner, WebViewConfiguration& configuration);
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine() override;

    /// How far the navigation that the program asked for has come, or one that the page began itself from
    /// `started` on.
    enum class Phase {
        idle,
        requested,
        decided,
        started,
    };

    /// The owner, kept alive for the caller; nothing while it is being made or is on its way out.
    std::shared_ptr<WebView> keep() const {
        return std::static_pointer_cast<WebView>(owner.weak_from_this().lock());
    }

    template <typename Callback>
    void connect(gpointer instance, const char* signal, Callback* callback) {
        connections.emplace_back(instance, signal, G_CALLBACK(callback), this);
    }

    template <typename Value>
    void update(Value& value, Value now, Property property);
    void updateURL();
    void updateTitle();
    void updateIsLoading();
    void updateHistory();

    void replaceNavigation();
    void begin(std::function<void()> navigation);
    void navigate(std::function<void()> navigation);
    std::optional<std::string> requestedURI() const;
    void endNavigation();
    void load(const std::string& uri);
    void loadHTMLString(const std::string& html, const std::optional<URL>& baseURL);
    void reload();
    void stop();

    void decide(const std::shared_ptr<NavigationQuestion>& question);
    void ask(const std::shared_ptr<NavigationQuestion>& question, bool isRequested);
    void answer(NavigationQuestion& question, NavigationActionPolicy policy, bool isRequested);
    void refuseRestrictedPort(NavigationQuestion& question, bool isRequested);

    void startTimeout();
    void timedOut();
    void report(WebKitLoadEvent event, const Error& error);

    bool isVisible() const override;
    bool mayGiveWay() const override;
    void giveWay() override;
    void recover();
    void catchUpIfVisible();
    void catchUpSoon();
    void prewarm();
    void updateGestures();

    static void loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer data);
    static gboolean loadFailed(WebKitWebView*, WebKitLoadEvent event, const char* uri, GError* error,
                               gpointer data);
    static gboolean decidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                 WebKitPolicyDecisionType type, gpointer data);
    static GtkWidget* createView(WebKitWebView*, WebKitNavigationAction* action, gpointer data);
    static gboolean scriptDialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer data);
    static void closed(WebKitWebView*, gpointer data);
    static void webProcessTerminated(WebKitWebView*, WebKitWebProcessTerminationReason reason, gpointer data);
    static void mapped(GtkWidget* widget, gpointer data);
    static void unmapped(GtkWidget*, gpointer data);
    static void painted(GdkFrameClock* clock, gpointer data);

    WebView& owner;
    GObjectPtr<WebKitWebView> view;

    std::optional<URL> url;
    /// The page that is shown while another is on its way, whose URL `url` may be already.
    std::optional<URL> shownURL;
    std::optional<std::string> title;
    bool canGoBack = false;
    bool canGoForward = false;
    double estimatedProgress = 0;
    bool isLoading = false;
    ObserverList<Property> observers;

    std::weak_ptr<NavigationDelegate> navigationDelegate;
    std::weak_ptr<UIDelegate> uiDelegate;
    std::vector<std::weak_ptr<ScriptDialog>> dialogs;

    Phase phase = Phase::idle;
    /// Where a navigation that came by `load` leads. The view's own URI may be the page before it again, when
    /// the engine has just given up an earlier one.
    std::optional<std::string> loadedURI;
    bool allowsGestures = false;
    /// A page opened the view, and the engine has not asked about its first navigation.
    bool isNewWindow = false;
    /// Nothing was loaded yet, and no web process asked for.
    bool fresh = true;
    /// A navigation that was stopped before the engine asked about it: that question is answered with no.
    std::optional<std::string> stoppedURI;
    OwnPagePass ownPage;
    /// The engine says of a failed load too that it is finished.
    bool finishIsFailure = false;
    /// A redirect that was refused for its port; the failure that follows is told under that name.
    std::optional<std::string> restrictedURI;

    double timeoutInterval = 0;
    std::shared_ptr<Timer> timeout;
    /// The time was up and the engine's cancellation has not come yet.
    std::shared_ptr<Timer> stopTimer;

    WebProcessPlace place;
    /// The web process ended and nothing was loaded since.
    bool processEnded = false;
    bool reloadsWhenVisible = false;
    std::optional<Clock::time_point> lastProcessEnd;
    /// What to load in place of a reload, where the process ended before the page was committed.
    std::optional<std::string> interruptedURI;

    SignalConnection paintConnection;
    std::vector<SignalConnection> connections;
};

WebView::Engine::Engine(WebView& owner, WebViewConfiguration& configuration)
    : owner(owner)
    , view(makeWebKitView(configuration))
    , place(*this) {
    const auto notified = [this](const char* property,
                                 void (*callback)(WebKitWebView*, GParamSpec*, gpointer)) {
        connect(view.get(), property, callback);
    };
    notified("notify::uri", [](WebKitWebView*, GParamSpec*, gpointer data) {
        auto& engine = *static_cast<Engine*>(data);
        if (const auto keptAlive = engine.keep()) {
            engine.updateURL();
        }
    });
    notified("notify::title", [](WebKitWebView*, GParamSpec*, gpointer data) {
        auto& engine = *static_cast<Engine*>(data);
        if (const auto keptAlive = engine.keep()) {
            engine.updateTitle();
        }
    });
    notified("notify::estimated-load-progress", [](WebKitWebView* view, GParamSpec*, gpointer data) {
        auto& engine = *static_cast<Engine*>(data);
        if (const auto keptAlive = engine.keep()) {
            engine.update(engine.estimatedProgress, webkit_web_view_get_estimated_load_progress(view),
                          Property::estimatedProgress);
        }
    });
    notified("notify::is-loading", [](WebKitWebView*, GParamSpec*, gpointer data) {
        auto& engine = *static_cast<Engine*>(data);
        if (const auto keptAlive = engine.keep()) {
            engine.updateIsLoading();
        }
    });
    connect(
        webkit_web_view_get_back_forward_list(view.get()), "changed",
        +[](WebKitBackForwardList*, WebKitBackForwardListItem*, gpointer, gpointer data) {
            auto& engine = *static_cast<Engine*>(data);
            if (const auto keptAlive = engine.keep()) {
                engine.updateHistory();
            }
        });
    // The page has moved to another process.
    notified("notify::page-id",
             [](WebKitWebView*, GParamSpec*, gpointer data) { static_cast<Engine*>(data)->place.moved(); });
    connect(view.get(), "load-changed", &loadChanged);
    connect(view.get(), "load-failed", &loadFailed);
    connect(view.get(), "decide-policy", &decidePolicy);
    connect(view.get(), "create", &createView);
    connect(view.get(), "script-dialog", &scriptDialog);
    connect(view.get(), "close", &closed);
    connect(view.get(), "web-process-terminated", &webProcessTerminated);
    connect(view.get(), "map", &mapped);
    connect(view.get(), "unmap", &unmapped);
    notified("notify::root", [](WebKitWebView*, GParamSpec*, gpointer data) {
        static_cast<Engine*>(data)->updateGestures();
    });
    // Behind the others, for the first answer counts.
    giveSafeAnswers(view.get());
}

WebView::Engine::~Engine() {
    paintConnection.disconnect();
    connections.clear();
    // A page that waits for an answer would keep the widget alive for as long as nobody gives one.
    for (const auto& dialog : dialogs) {
        if (const auto pending = dialog.lock()) {
            pending->answer(false);
        }
    }
    // The view may be let go from inside one of the widget's signals, whose emitter still works with the
    // widget when the handler returns. Not when the loop is idle, for a page that asks forever, and now gets
    // its answers at once, never lets it be.
    auto* widget = view.get();
    g_idle_add_full(G_PRIORITY_HIGH, releaseLater, g_object_ref(widget), g_object_unref);
}

// Observation

template <typename Value>
void WebView::Engine::update(Value& value, Value now, Property property) {
    if (value == now) {
        return;
    }
    value = std::move(now);
    observers.notify(property);
}

void WebView::Engine::updateURL() {
    const auto text = nonEmpty(webkit_web_view_get_uri(view.get()));
    if (processEnded && !text) {
        return;
    }
    update(url, text ? URL::fromString(*text) : std::nullopt, Property::url);
}

void WebView::Engine::updateTitle() {
    if (!processEnded) {
        update(title, nonEmpty(webkit_web_view_get_title(view.get())), Property::title);
    }
}

void WebView::Engine::updateIsLoading() {
    const bool now = webkit_web_view_is_loading(view.get());
    if (now) {
        processEnded = false;
        interruptedURI.reset();
    } else if (phase != Phase::requested) { // or it is the navigation before that is given up
        endNavigation();
    }
    update(isLoading, now, Property::isLoading);
}

void WebView::Engine::updateHistory() {
    update(canGoBack, static_cast<bool>(webkit_web_view_can_go_back(view.get())), Property::canGoBack);
    update(canGoForward, static_cast<bool>(webkit_web_view_can_go_forward(view.get())),
           Property::canGoForward);
}

// Navigation

/// The program asks for a navigation, which replaces the one under way.
void WebView::Engine::replaceNavigation() {
    if (phase == Phase::idle) {
        shownURL = url;
    }
    endNavigation();
    stopTimer.reset();
    restrictedURI.reset();
    ownPage.disarm();
    reloadsWhenVisible = false;
    fresh = false;
    phase = Phase::requested;
}

/// Once there is a web process for it.
void WebView::Engine::begin(std::function<void()> navigation) {
    place.begin([this, navigation = std::move(navigation)] {
        const auto keptAlive = keep();
        navigation();
    });
    // Not at once: of many tabs that are opened together each is in sight, until the next one is.
    if (place.isWaiting()) {
        catchUpSoon();
    }
}

void WebView::Engine::navigate(std::function<void()> navigation) {
    replaceNavigation();
    begin(std::move(navigation));
}

std::optional<std::string> WebView::Engine::requestedURI() const {
    return loadedURI ? loadedURI : nonEmpty(webkit_web_view_get_uri(view.get()));
}

void WebView::Engine::endNavigation() {
    phase = Phase::idle;
    loadedURI.reset();
    timeout.reset();
    stoppedURI.reset();
}

void WebView::Engine::load(const std::string& uri) {
    replaceNavigation();
    loadedURI = uri;
    begin([this, uri] {
        startTimeout();
        webkit_web_view_load_uri(view.get(), uri.c_str());
    });
    if (place.isWaiting()) {
        update(url, URL::fromString(uri), Property::url);
    }
}

void WebView::Engine::loadHTMLString(const std::string& html, const std::optional<URL>& baseURL) {
    navigate([this, html, baseURL] {
        const auto base = ownPage.arm(baseURL);
        webkit_web_view_load_html(view.get(), html.c_str(), base ? base->absoluteString().c_str() : nullptr);
    });
}

void WebView::Engine::reload() {
    if (place.isWaiting()) {
        return;
    }
    if (processEnded) {
        recover();
    } else {
        navigate([this] { webkit_web_view_reload(view.get()); });
    }
}

void WebView::Engine::stop() {
    if (place.isWaiting()) {
        place.stopWaiting();
        endNavigation();
        update(url, shownURL, Property::url);
        return;
    }
    // Before the engine has asked about the navigation it only forgets it, and would report it as loading for
    // good.
    if (phase == Phase::requested && (isLoading || loadedURI)) {
        stoppedURI = requestedURI();
    }
    timeout.reset();
    webkit_web_view_stop_loading(view.get());
}

void WebView::Engine::loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    if (!keptAlive) {
        return;
    }
    engine.place.started();
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        // The engine asks about a load before it starts it: this is still the navigation before.
        if (engine.phase == Phase::requested && engine.loadedURI) {
            break;
        }
        // The page went elsewhere before the load was through.
        if (engine.phase == Phase::started) {
            engine.endNavigation();
        } else if (engine.phase == Phase::idle) {
            engine.shownURL = engine.url;
        }
        engine.phase = Phase::started;
        engine.fresh = false;
        // The time was up between the engine's question and now.
        if (engine.timeout && !engine.timeout->isValid()) {
            engine.timedOut();
        }
        break;
    case WEBKIT_LOAD_REDIRECTED:
        if (engine.loadedURI && engine.phase == Phase::started) {
            engine.loadedURI = nonEmpty(webkit_web_view_get_uri(view));
            if (engine.timeout) {
                engine.startTimeout();
            }
        }
        break;
    case WEBKIT_LOAD_COMMITTED:
        // In an earlier phase it is the page before that is still coming in.
        if (engine.phase == Phase::started) {
            engine.endNavigation();
        } else {
            engine.shownURL.reset();
        }
        engine.ownPage.disarm();
        engine.updateTitle();
        engine.updateHistory();
        break;
    case WEBKIT_LOAD_FINISHED:
        engine.updateHistory();
        if (std::exchange(engine.finishIsFailure, false)) {
            break;
        }
        if (const auto delegate = engine.navigationDelegate.lock()) {
            delegate->didFinishNavigation(*keptAlive);
        }
        break;
    }
}

// Policy

gboolean WebView::Engine::decidePolicy(WebKitWebView* view, WebKitPolicyDecision* decision,
                                       WebKitPolicyDecisionType type, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    if (!keptAlive || type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        return FALSE;
    }
    engine.place.started();
    const auto question = std::make_shared<NavigationQuestion>(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    if (type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
        engine.ask(question, false);
        return TRUE;
    }
    // A window that is to know nothing of its opener has its page loaded by the engine, which starts a
    // process for it as soon as it may.
    if (std::exchange(engine.isNewWindow, false) && webkit_web_view_get_uri(view) != nullptr) {
        engine.place.leave();
        engine.begin([&engine, question] { engine.decide(question); });
    } else {
        engine.decide(question);
    }
    return TRUE;
}

void WebView::Engine::decide(const std::shared_ptr<NavigationQuestion>& question) {
    if (stoppedURI == question->uri()) {
        endNavigation();
        question->answer(NavigationActionPolicy::cancel);
        return;
    }
    const bool isRequested = phase == Phase::requested && requestedURI() == question->uri();
    const bool isOwnPage = ownPage.use(question->action(), question->isRedirect());
    if (isRequested || isOwnPage) {
        phase = Phase::decided;
    }
    if (isOwnPage) {
        question->answer(NavigationActionPolicy::allow);
    } else {
        ask(question, isRequested);
    }
}

void WebView::Engine::ask(const std::shared_ptr<NavigationQuestion>& question, bool isRequested) {
    const auto delegate = std::dynamic_pointer_cast<NavigationPolicyDelegate>(navigationDelegate.lock());
    if (!delegate) {
        answer(*question, NavigationActionPolicy::allow, isRequested);
        return;
    }
    delegate->decidePolicy(owner, question->action(),
                           [question, isRequested, weak = weak_from_this()](NavigationActionPolicy policy) {
                               const auto engine = weak.lock();
                               const auto keptAlive = engine ? engine->keep() : nullptr;
                               if (keptAlive) {
                                   engine->answer(*question, policy, isRequested);
                               }
                           });
}

void WebView::Engine::answer(NavigationQuestion& question, NavigationActionPolicy policy, bool isRequested) {
    if (policy == NavigationActionPolicy::allow && !question.isAnswered() &&
        usesRestrictedPort(question.uri().c_str())) {
        refuseRestrictedPort(question, isRequested);
    } else {
        question.answer(policy);
    }
}

void WebView::Engine::refuseRestrictedPort(NavigationQuestion& question, bool isRequested) {
    if (question.isRedirect()) {
        restrictedURI = question.uri();
    }
    if (isRequested) {
        endNavigation();
    }
    question.answer(NavigationActionPolicy::cancel);
    if (isRequested) {
        report(WEBKIT_LOAD_STARTED, restrictedPortError(question.uri()));
    }
}

// Failures

void WebView::Engine::report(WebKitLoadEvent event, const Error& error) {
    const auto delegate = navigationDelegate.lock();
    if (!delegate) {
        return;
    }
    if (event == WEBKIT_LOAD_COMMITTED) {
        delegate->didFailNavigation(owner, error);
    } else {
        delegate->didFailProvisionalNavigation(owner, error);
    }
}

gboolean WebView::Engine::loadFailed(WebKitWebView* /*view*/, WebKitLoadEvent event, const char* uri,
                                     GError* error, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    if (!keptAlive) {
        return TRUE;
    }
    engine.updateHistory();
    engine.ownPage.disarm();
    auto reported = loadError(*error, uri);
    if (!reported) {
        return TRUE;
    }
    engine.finishIsFailure = true;
    const bool isCancelled = reported->domain == Error::urlDomain && reported->code == Error::urlCancelled;
    if (isCancelled && engine.stopTimer) {
        engine.stopTimer.reset();
        reported = timedOutError(reported->failingURL);
    }
    const auto restricted = std::exchange(engine.restrictedURI, std::nullopt);
    if (restricted && reported->domain == Error::webKitDomain && reported->failingURL == restricted) {
        reported = restrictedPortError(restricted);
    }
    engine.report(event, *reported);
    return TRUE;
}

void WebView::Engine::startTimeout() {
    timeout.reset();
    if (!(timeoutInterval > 0)) {
        return;
    }
    timeout = Timer::scheduled(timeoutInterval, false, [this] {
        if (const auto keptAlive = keep()) {
            timedOut();
        }
    });
}

void WebView::Engine::timedOut() {
    if (!isLoading && phase != Phase::requested) {
        return;
    }
    const auto failingURL = loadedURI;
    const bool willFail = phase == Phase::started;
    stop();
    const auto reportNow = [this, failingURL] {
        stopTimer.reset();
        report(WEBKIT_LOAD_STARTED, timedOutError(failingURL));
    };
    if (!willFail) {
        reportNow();
        return;
    }
    stopTimer = Timer::scheduled(stopLimit, false, [this, reportNow] {
        if (const auto keptAlive = keep()) {
            reportNow();
        }
    });
}

// New windows and dialogs

GtkWidget* WebView::Engine::createView(WebKitWebView* view, WebKitNavigationAction* action, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    const auto delegate = keptAlive ? engine.uiDelegate.lock() : nullptr;
    if (!delegate) {
        return nullptr;
    }

    auto native = std::make_unique<WebViewConfiguration::Native>();
    native->opener = GObjectPtr<WebKitWebView>::retain(view);
    const auto configuration = std::make_shared<WebViewConfiguration>(std::move(native));
    configuration->setUserContentController(keptAlive->configuration_->userContentController());
    configuration->setWebsiteDataStore(keptAlive->configuration_->websiteDataStore());

    const auto child = delegate->createWebView(*keptAlive, configuration, navigationAction(action));
    configuration->native().opener.reset();
    if (!child) {
        return nullptr;
    }
    if (child->configuration_ != configuration) {
        fatalError("A page's new window must be shown by a view made with the configuration supplied for it");
    }
    child->engine_->fresh = false;
    child->engine_->isNewWindow = true;
    child->engine_->place.share(engine.place);
    // Borrowed: the emission takes a reference over, and gives the engine one that it never gives back.
    return GTK_WIDGET(child->engine_->view.get());
}

gboolean WebView::Engine::scriptDialog(WebKitWebView* /*view*/, WebKitScriptDialog* dialog, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    const auto delegate = keptAlive ? engine.uiDelegate.lock() : nullptr;
    const auto type = webkit_script_dialog_get_dialog_type(dialog);
    if (!delegate || (type != WEBKIT_SCRIPT_DIALOG_ALERT && type != WEBKIT_SCRIPT_DIALOG_CONFIRM)) {
        return FALSE;
    }

    const auto pending = std::make_shared<ScriptDialog>(dialog);
    std::erase_if(engine.dialogs, [](const auto& other) { return other.expired(); });
    engine.dialogs.push_back(pending);
    const std::string message = webkit_script_dialog_get_message(dialog);
    // A page must not speak in the name of the one that comes after it.
    const FrameInfo frame{.url = engine.phase == Phase::idle ? engine.url : engine.shownURL};
    if (type == WEBKIT_SCRIPT_DIALOG_ALERT) {
        delegate->runJavaScriptAlertPanel(*keptAlive, message, frame, [pending] { pending->answer(true); });
    } else {
        delegate->runJavaScriptConfirmPanel(*keptAlive, message, frame,
                                            [pending](bool confirmed) { pending->answer(confirmed); });
    }
    return TRUE;
}

void WebView::Engine::closed(WebKitWebView* /*view*/, gpointer data) {
    const auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    if (const auto delegate = keptAlive ? engine.uiDelegate.lock() : nullptr) {
        delegate->webViewDidClose(*keptAlive);
    }
}

// The web process

void WebView::Engine::webProcessTerminated(WebKitWebView* /*view*/,
                                           WebKitWebProcessTerminationReason /*reason*/, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    const auto keptAlive = engine.keep();
    if (!keptAlive) {
        return;
    }
    engine.place.leave();
    bool again = false;
    if (!WebProcessPlace::isMakingRoom()) {
        const auto now = Clock::now();
        again = engine.lastProcessEnd && now - *engine.lastProcessEnd < processEndsInARow;
        engine.lastProcessEnd = now;
    }
    engine.processEnded = true;
    engine.stopTimer.reset();
    // Nothing is committed yet that a reload could bring back.
    if (engine.loadedURI) {
        engine.interruptedURI = engine.loadedURI;
    } else if (engine.url && (engine.isNewWindow || engine.place.isWaiting())) {
        engine.interruptedURI = engineText(*engine.url);
    } else if (engine.phase == Phase::idle) {
        engine.interruptedURI.reset();
    }
    engine.place.stopWaiting();
    for (const auto& dialog : std::exchange(engine.dialogs, {})) {
        if (const auto pending = dialog.lock()) {
            pending->answer(false);
        }
    }
    engine.endNavigation();
    engine.reloadsWhenVisible = !again && engine.url;
    // The engine is about to forget the page; only then can it be told to bring it back.
    engine.catchUpSoon();
}

bool WebView::Engine::isVisible() const { return gtk_widget_get_mapped(GTK_WIDGET(view.get())) == TRUE; }

bool WebView::Engine::mayGiveWay() const {
    return !isVisible() && !webkit_web_view_is_playing_audio(view.get()) &&
           std::ranges::all_of(dialogs, [](const auto& dialog) { return dialog.expired(); });
}

void WebView::Engine::giveWay() {
    const auto keptAlive = keep();
    if (!keptAlive) {
        return;
    }
    webkit_web_view_terminate_web_process(view.get());
}

void WebView::Engine::catchUpSoon() {
    RunLoop::main().perform([weak = weak_from_this()] {
        if (const auto engine = weak.lock()) {
            engine->catchUpIfVisible();
        }
    });
}

/// Loads what had to wait until somebody looks.
void WebView::Engine::catchUpIfVisible() {
    const auto keptAlive = keep();
    if (!keptAlive || !isVisible()) {
        return;
    }
    if (processEnded && reloadsWhenVisible) {
        recover();
    }
    place.cutIn();
}

void WebView::Engine::recover() {
    if (const auto interrupted = interruptedURI) {
        load(*interrupted);
    } else {
        navigate([this] { webkit_web_view_reload(view.get()); });
    }
}

void WebView::Engine::mapped(GtkWidget* widget, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    engine.place.seen();
    if (engine.reloadsWhenVisible || engine.place.isWaiting()) {
        engine.catchUpSoon();
    }
    if (engine.fresh) {
        engine.paintConnection =
            SignalConnection(gtk_widget_get_frame_clock(widget), "after-paint", G_CALLBACK(painted), data);
    }
}

void WebView::Engine::unmapped(GtkWidget* /*widget*/, gpointer data) {
    static_cast<Engine*>(data)->place.seen();
}

void WebView::Engine::painted(GdkFrameClock* /*clock*/, gpointer data) {
    auto& engine = *static_cast<Engine*>(data);
    RunLoop::main().perform([weak = engine.weak_from_this()] {
        if (const auto engine = weak.lock()) {
            engine->prewarm();
        }
    });
    engine.paintConnection.disconnect();
}

/// Starting the web process takes longer than everything else of a first load, and an empty page needs none.
/// Once the window stands it is started all the same, while the user still types the address: a script that
/// does nothing needs one, and touches neither history nor properties.
void WebView::Engine::prewarm() {
    if (!std::exchange(fresh, false) || !place.takeNow()) {
        return;
    }
    const auto answered = [](GObject*, GAsyncResult*, gpointer data) {
        const std::unique_ptr<std::weak_ptr<Engine>> weak(static_cast<std::weak_ptr<Engine>*>(data));
        if (const auto engine = weak->lock()) {
            engine->place.started();
        }
    };
    webkit_web_view_evaluate_javascript(view.get(), "1", -1, nullptr, nullptr, nullptr, answered,
                                        std::make_unique<std::weak_ptr<Engine>>(weak_from_this()).release());
}

/// For the gestures the engine takes a picture of each page that is left, and crashes where there is no
/// window to take it of: in a closed tab, in one that was never shown, and in one that is being dragged from
/// window to window.
void WebView::Engine::updateGestures() {
    const bool inWindow = gtk_widget_get_root(GTK_WIDGET(view.get())) != nullptr;
    webkit_settings_set_enable_back_forward_navigation_gestures(webkit_web_view_get_settings(view.get()),
                                                                allowsGestures && inWindow ? TRUE : FALSE);
}

// The view

std::shared_ptr<WebView> WebView::create(const std::shared_ptr<WebViewConfiguration>& configuration) {
    assertMainThread("WebView::create");
    struct Made final : WebView {
        explicit Made(std::shared_ptr<WebViewConfiguration> configuration)
            : WebView(std::move(configuration)) {}
    };
    auto view = std::make_shared<Made>(configuration);
    view->native();
    return view;
}

WebView::WebView(std::shared_ptr<WebViewConfiguration> configuration)
    : configuration_(std::move(configuration))
    , engine_(std::make_shared<Engine>(*this, *configuration_)) {}

WebView::~WebView() { assertMainThread("WebView"); }

std::unique_ptr<View::Native> WebView::makeNative() {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(GTK_WIDGET(engine_->view.get()));
    return native;
}

std::optional<URL> WebView::url() const { return engine_->url; }

std::optional<std::string> WebView::title() const { return engine_->title; }

bool WebView::canGoBack() const { return engine_->canGoBack; }

bool WebView::canGoForward() const { return engine_->canGoForward; }

double WebView::estimatedProgress() const { return engine_->estimatedProgress; }

bool WebView::isLoading() const { return engine_->isLoading; }

Observation WebView::observe(Property property, std::function<void()> changed) {
    assertMainThread("WebView::observe");
    return engine_->observers.add([property, changed = std::move(changed)](Property changedProperty) {
        if (changedProperty == property) {
            changed();
        }
    });
}

void WebView::load(const URLRequest& request) {
    assertMainThread("WebView::load");
    const auto keptAlive = shared_from_this();
    engine_->timeoutInterval = request.timeoutInterval;
    engine_->load(engineText(request.url));
}

void WebView::loadHTMLString(const std::string& html, const std::optional<URL>& baseURL) {
    assertMainThread("WebView::loadHTMLString");
    const auto keptAlive = shared_from_this();
    engine_->loadHTMLString(html, baseURL);
}

void WebView::reload() {
    assertMainThread("WebView::reload");
    const auto keptAlive = shared_from_this();
    engine_->reload();
}

void WebView::stopLoading() {
    assertMainThread("WebView::stopLoading");
    const auto keptAlive = shared_from_this();
    engine_->stop();
}

void WebView::goBack() {
    assertMainThread("WebView::goBack");
    const auto keptAlive = shared_from_this();
    if (!engine_->canGoBack) {
        return;
    }
    engine_->navigate([view = engine_->view] { webkit_web_view_go_back(view.get()); });
}

void WebView::goForward() {
    assertMainThread("WebView::goForward");
    const auto keptAlive = shared_from_this();
    if (!engine_->canGoForward) {
        return;
    }
    engine_->navigate([view = engine_->view] { webkit_web_view_go_forward(view.get()); });
}

void WebView::setAllowsBackForwardNavigationGestures(bool allows) {
    assertMainThread("WebView::setAllowsBackForwardNavigationGestures");
    engine_->allowsGestures = allows;
    engine_->updateGestures();
}

void WebView::setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate) {
    assertMainThread("WebView::setNavigationDelegate");
    engine_->navigationDelegate = delegate;
}

void WebView::setUIDelegate(const std::weak_ptr<UIDelegate>& delegate) {
    assertMainThread("WebView::setUIDelegate");
    engine_->uiDelegate = delegate;
}

bool WebView::respondsTo(Action action) const { return isEditing(action); }

void WebView::perform(Action action, const ActionSender& /*sender*/) {
    assertMainThread("WebView::perform");
    if (const char* command = editingCommand(action)) {
        webkit_web_view_execute_editing_command(engine_->view.get(), command);
    }
}

} // namespace Platform
