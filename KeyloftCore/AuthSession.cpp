#include "KeyloftCore/AuthSession.h"

#include "KeyloftCore/Log.h"
#include "KeyloftCore/RedirectCapture.h"
#include "Platform/AppKit/Application.h"
#include "Platform/AppKit/Window.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/MakeShared.h"
#include "Platform/Foundation/Timer.h"
#include "Platform/WebKit/WebView.h"

#include <utility>

namespace KeyloftCore {

namespace {

constexpr Platform::Size contentSize{520, 360};

constexpr std::size_t loggedAuthorizeURLLength = 120;

std::shared_ptr<Platform::Window> showWindow(const std::shared_ptr<Platform::WebView>& webView) {
    auto window = Platform::Window::create(contentSize,
                                           {.closable = true, .miniaturizable = false, .resizable = false});
    window->setReleasedWhenClosed(false);
    window->setTitle("Keyloft");
    window->setContentView(webView);
    window->center();
    window->makeKeyAndOrderFront();
    Platform::Application::shared().activateIgnoringOtherApps();
    return window;
}

} // namespace

AuthSession::AuthSession(AuthorizeRequest request, Completion completion)
    : request_(std::move(request))
    , completion_(std::move(completion)) {}

AuthSession::~AuthSession() = default;

std::shared_ptr<AuthSession> AuthSession::create(AuthorizeRequest request, Completion completion) {
    return Platform::makeShared<AuthSession>(std::move(request), std::move(completion));
}

void AuthSession::start() {
    if (!Platform::Application::exists()) {
        Platform::fatalError("AuthSession::start was called before the application object was created");
    }
    if (!finished_) {
        running_ = shared_from_this();
    }
    const auto webView = makeWebView();
    runs_.push_back({.webView = webView, .window = showWindow(webView), .timeoutTimer = makeTimeoutTimer()});
    beginLoading(*webView);
}

std::shared_ptr<Platform::WebView> AuthSession::makeWebView() {
    const auto configuration = Platform::WebViewConfiguration::create();
    configuration->setWebsiteDataStore(Platform::WebsiteDataStore::nonPersistent);
    const auto controller = Platform::UserContentController::create();
    controller->addScriptMessageHandler(weak_from_this(), std::string(SubmittedForm::messageHandlerName));
    controller->addUserScript({.source = std::string(SubmittedForm::hookScript),
                               .injectionTime = Platform::UserScript::InjectionTime::atDocumentStart,
                               .forMainFrameOnly = false});
    configuration->setUserContentController(controller);

    auto webView = Platform::WebView::create(configuration);
    webView->setFrame({0, 0, contentSize.width, contentSize.height});
    webView->setNavigationDelegate(weak_from_this());
    webView->setUIDelegate(weak_from_this());
    return webView;
}

std::shared_ptr<Platform::Timer> AuthSession::makeTimeoutTimer() {
    return Platform::Timer::scheduled(sessionTimeout_, false, [weak = weak_from_this()] {
        if (const auto session = weak.lock()) {
            session->finish(std::unexpected(HostError::timeout()));
        }
    });
}

void AuthSession::beginLoading(Platform::WebView& webView) const {
    log("loading " + Platform::characterPrefix(request_.url().absoluteString(), loggedAuthorizeURLLength) +
        "… mode=" + std::string(rawValue(request_.responseMode())) +
        " initiator=" + initiatorOrigin.value_or("none"));
    if (initiatorOrigin) {
        webView.loadHTMLString(RedirectCapture::bootstrapPage(request_.url()),
                               Platform::URL::fromString(*initiatorOrigin));
    } else {
        webView.load({.url = request_.url(), .timeoutInterval = requestTimeout_});
    }
}

void AuthSession::decidePolicy(Platform::WebView& /*webView*/, const Platform::NavigationAction& action,
                               const DecisionHandler& decisionHandler) {
    using Platform::NavigationActionPolicy;
    if (!action.url) {
        decisionHandler(NavigationActionPolicy::cancel);
        return;
    }
    log(RedirectCapture::navigationLine(*action.url, action));
    if (request_.matchesRedirect(*action.url)) {
        decisionHandler(NavigationActionPolicy::cancel);
        finish(AuthResult{.responseMode = request_.responseMode(),
                          .redirectURI = request_.redirectURI(),
                          .params = RedirectCapture::parameters(*action.url, action, lastSubmittedForm_)});
        return;
    }
    const auto host = action.url->host();
    if (host && RedirectCapture::isProviderHost(*host)) {
        decisionHandler(NavigationActionPolicy::allow);
        return;
    }
    log("blocked navigation to " + host.value_or("?"));
    decisionHandler(NavigationActionPolicy::cancel);
}

void AuthSession::didFinishNavigation(Platform::WebView& webView) {
    const auto url = webView.url();
    log("didFinish " + (url ? RedirectCapture::shownURL(*url) : ""));
}

void AuthSession::didFailProvisionalNavigation(Platform::WebView& /*webView*/, const Platform::Error& error) {
    if (error.domain == Platform::Error::urlDomain && error.code == Platform::Error::urlCancelled) {
        return;
    }
    log("didFailProvisional " + error.domain + " " + std::to_string(error.code) + " " +
        error.localizedDescription);
    finish(std::unexpected(HostError::internalError(error.localizedDescription)));
}

void AuthSession::webViewDidClose(Platform::WebView& /*webView*/) {
    log("webViewDidClose");
    finish(std::unexpected(HostError::cancelled()));
}

void AuthSession::didReceiveScriptMessage(const Platform::ScriptMessage& message) {
    auto form = SubmittedForm::fromMessage(message.body);
    if (!form) {
        return;
    }
    log("form submit hooked → " + form->shownAction() + " keys=" + RedirectCapture::nameList(form->fields));
    lastSubmittedForm_ = std::move(form);
}

void AuthSession::finish(const Result& result) {
    if (finished_) {
        return;
    }
    finished_ = true;
    const auto kept = shared_from_this();
    running_.reset();
    if (!runs_.empty()) {
        runs_.back().timeoutTimer->invalidate();
        runs_.back().window->orderOut();
    }
    const auto completion = std::exchange(completion_, nullptr);
    completion(result);
}

} // namespace KeyloftCore
