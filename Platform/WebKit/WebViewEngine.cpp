#include "Platform/WebKit/WebViewEngine.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/RunLoop.h"

namespace Platform {

WebViewEngine::~WebViewEngine() { panels_.answerAllSafely(); }

Observation WebViewEngine::observe(Property property, std::function<void()> changed) {
    return observers_.add([property, changed = std::move(changed)](Property changedProperty) {
        if (changedProperty == property) {
            changed();
        }
    });
}

void WebViewEngine::urlChanged(std::optional<URL> url) {
    if (url || !isPageGone()) {
        update(&Values::url, std::move(url), Property::url);
    }
}

void WebViewEngine::titleChanged(std::optional<std::string> title) {
    if (!isPageGone()) {
        update(&Values::title, std::move(title), Property::title);
    }
}

void WebViewEngine::requestNavigation() {
    ownPage_.disarm();
    recovery_.navigationRequested();
}

void WebViewEngine::load(const URLRequest& request) {
    requestNavigation();
    startLoad(request);
}

void WebViewEngine::loadHTMLString(const std::string& html, const std::optional<URL>& baseURL) {
    requestNavigation();
    startHTML(html, ownPage_.arm(baseURL));
}

void WebViewEngine::reload() {
    if (isLoadPending()) {
        return;
    }
    if (const auto interrupted = recovery_.interrupted()) {
        load(*interrupted);
    } else {
        requestNavigation();
        startReload();
    }
}

void WebViewEngine::goBack() {
    if (values_.canGoBack) {
        requestNavigation();
        startGoingBack();
    }
}

void WebViewEngine::goForward() {
    if (values_.canGoForward) {
        requestNavigation();
        startGoingForward();
    }
}

void WebViewEngine::setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate) {
    navigationDelegate_ = delegate;
    policyDelegate_ = std::dynamic_pointer_cast<NavigationPolicyDelegate>(delegate.lock());
}

void WebViewEngine::decidePolicy(const NavigationAction& action, const std::shared_ptr<PolicyReply>& reply) {
    const auto view = keepAlive();
    const auto delegate = policyDelegate_.lock();
    if (!delegate) {
        (*reply)(NavigationActionPolicy::allow);
    } else if (view) {
        delegate->decidePolicy(*view, action, [reply](NavigationActionPolicy policy) { (*reply)(policy); });
    }
}

void WebViewEngine::finished() {
    const auto view = keepAlive();
    const auto delegate = navigationDelegate_.lock();
    if (view && delegate) {
        delegate->didFinishNavigation(*view);
    }
}

void WebViewEngine::report(const Error& error, bool hasCommitted) {
    const auto view = keepAlive();
    const auto delegate = navigationDelegate_.lock();
    if (!view || !delegate) {
        return;
    }
    if (hasCommitted) {
        delegate->didFailNavigation(*view, error);
    } else {
        delegate->didFailProvisionalNavigation(*view, error);
    }
}

std::shared_ptr<WebView>
WebViewEngine::createWebView(const std::shared_ptr<WebViewConfiguration>& configuration,
                             const NavigationAction& action) {
    const auto view = keepAlive();
    const auto delegate = uiDelegate_.lock();
    auto child = view && delegate ? delegate->createWebView(*view, configuration, action) : nullptr;
    if (child && child->configuration() != configuration) {
        fatalError("UIDelegate::createWebView returned a view with another configuration than it was given");
    }
    return child;
}

void WebViewEngine::closed() {
    const auto view = keepAlive();
    const auto delegate = uiDelegate_.lock();
    if (view && delegate) {
        delegate->webViewDidClose(*view);
    }
}

void WebViewEngine::runAlertPanel(const std::string& message, const FrameInfo& frame,
                                  const std::shared_ptr<AlertReply>& reply) {
    const auto view = keepAlive();
    const auto delegate = uiDelegate_.lock();
    if (view && delegate) {
        panels_.add(reply);
        delegate->runJavaScriptAlertPanel(*view, message, frame, [reply] { (*reply)(); });
    }
}

void WebViewEngine::runConfirmPanel(const std::string& message, const FrameInfo& frame,
                                    const std::shared_ptr<ConfirmReply>& reply) {
    const auto view = keepAlive();
    const auto delegate = uiDelegate_.lock();
    if (view && delegate) {
        panels_.add(reply);
        delegate->runJavaScriptConfirmPanel(*view, message, frame,
                                            [reply](bool confirmed) { (*reply)(confirmed); });
    }
}

void WebViewEngine::webProcessEnded(WebProcessRecovery::Cause cause, std::optional<URLRequest> interrupted) {
    recovery_.processEnded(cause, std::move(interrupted), values_.url.has_value());
    ownPage_.disarm();
    panels_.answerAllSafely();
    // A reload has no effect until WebKit has handled the termination of the process.
    catchUpSoon();
}

void WebViewEngine::catchUp() {
    const auto view = keepAlive();
    if (view && isVisible() && recovery_.reloadsWhenVisible()) {
        reload();
    }
}

void WebViewEngine::catchUpSoon() {
    RunLoop::main().perform([weak = weak_from_this()] {
        if (const auto engine = weak.lock()) {
            engine->catchUp();
        }
    });
}

} // namespace Platform
