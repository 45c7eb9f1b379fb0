#include "Platform/WebKit/WebView.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/Foundation/MakeShared.h"
#include "Platform/WebKit/WebViewEngine.h"

#include <utility>

namespace Platform {

std::shared_ptr<WebView> WebView::create(const std::shared_ptr<WebViewConfiguration>& configuration) {
    assertMainThread("WebView::create");
    auto view = makeShared<WebView>(configuration);
    view->native();
    view->engine_->setOwner(view);
    return view;
}

WebView::WebView(std::shared_ptr<WebViewConfiguration> configuration)
    : configuration_(std::move(configuration))
    , engine_(WebViewEngine::create(*configuration_)) {}

WebView::~WebView() { assertMainThread("WebView"); }
std::optional<URL> WebView::url() const { return engine_->values().url; }
std::optional<std::string> WebView::title() const { return engine_->values().title; }
bool WebView::canGoBack() const { return engine_->values().canGoBack; }
bool WebView::canGoForward() const { return engine_->values().canGoForward; }
double WebView::estimatedProgress() const { return engine_->values().estimatedProgress; }
bool WebView::isLoading() const { return engine_->values().isLoading; }

Observation WebView::observe(Property property, std::function<void()> changed) {
    assertMainThread("WebView::observe");
    return engine_->observe(property, std::move(changed));
}

void WebView::load(const URLRequest& request) {
    assertMainThread("WebView::load");
    const auto keptAlive = shared_from_this();
    engine_->load(request);
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
    engine_->stopLoading();
}

void WebView::goBack() {
    assertMainThread("WebView::goBack");
    const auto keptAlive = shared_from_this();
    engine_->goBack();
}

void WebView::goForward() {
    assertMainThread("WebView::goForward");
    const auto keptAlive = shared_from_this();
    engine_->goForward();
}

void WebView::setAllowsBackForwardNavigationGestures(bool allows) {
    assertMainThread("WebView::setAllowsBackForwardNavigationGestures");
    engine_->setAllowsBackForwardNavigationGestures(allows);
}

void WebView::setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate) {
    assertMainThread("WebView::setNavigationDelegate");
    engine_->setNavigationDelegate(delegate);
}

void WebView::setUIDelegate(const std::weak_ptr<UIDelegate>& delegate) {
    assertMainThread("WebView::setUIDelegate");
    engine_->setUIDelegate(delegate);
}

bool WebView::respondsTo(Action action) const { return isEditing(action); }

void WebView::perform(Action action, const ActionSender& /*sender*/) {
    assertMainThread("WebView::perform");
    engine_->performEditing(action);
}

} // namespace Platform
