#include "Platform/WebKit/macos/WebViewEngine.h"

#include "Platform/AppKit/macos/ActionSelectors.h"
#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/macos/Conversions.h"
#include "Platform/WebKit/macos/Conversions.h"
#include "Platform/WebKit/macos/WebViewConfigurationNative.h"
#include "Platform/WebKit/macos/WebViewDelegate.h"

#include <utility>

/// WebKit's view stands before the window's controller in the responder chain and has actions of its own
/// under names of the program's (`reload:`, `goBack:` …). Those are the controller's: it validates them, and
/// does more with them.
@interface KeyloftWebView : WKWebView
@end

@implementation KeyloftWebView
- (BOOL)respondsToSelector:(SEL)selector {
    const auto action = Platform::actionFor(selector);
    return (!action || Platform::isEditing(*action)) && [super respondsToSelector:selector];
}
@end

namespace Platform {

namespace {

/// After an end of the web process so soon behind the one before, the page itself is to blame: reloading it
/// would only repeat it.
constexpr auto processEndsInARow = std::chrono::minutes(1);

std::optional<std::string> nonEmpty(NSString* text) {
    return text.length > 0 ? std::optional(fromNSString(text)) : std::nullopt;
}

bool isVisible(NSView* view) {
    NSWindow* const window = view.window;
    return window != nil && (window.occlusionState & NSWindowOcclusionStateVisible) != 0;
}

} // namespace

WebViewEngine::WebViewEngine(WebViewConfiguration& configuration)
    : view_([[KeyloftWebView alloc] initWithFrame:NSZeroRect
                                    configuration:nativeConfiguration(configuration)])
    , delegate_([[KeyloftWebViewDelegate alloc] init]) {}

void WebViewEngine::connect(const std::weak_ptr<WebView>& owner) {
    owner_ = owner;
    delegate_->engine = weak_from_this();
    view_.navigationDelegate = delegate_;
    view_.UIDelegate = delegate_;
    for (const auto& key : observedKeys()) {
        [view_ addObserver:delegate_
                forKeyPath:key.keyPath
                   options:NSKeyValueObservingOptionNew
                   context:const_cast<ObservedKey*>(&key)];
    }
    [NSNotificationCenter.defaultCenter addObserver:delegate_
                                           selector:@selector(occlusionStateDidChange:)
                                               name:NSWindowDidChangeOcclusionStateNotification
                                             object:nil];
}

WebViewEngine::~WebViewEngine() {
    [NSNotificationCenter.defaultCenter removeObserver:delegate_];
    for (const auto& key : observedKeys()) {
        [view_ removeObserver:delegate_ forKeyPath:key.keyPath context:const_cast<ObservedKey*>(&key)];
    }
    view_.navigationDelegate = nil;
    view_.UIDelegate = nil;
    // The view may be let go from inside one of WebKit's calls, which still works with its own when it
    // returns.
    RunLoop::main().perform([keptAlive = view_] { (void)keptAlive; });
}

// Observation

Observation WebViewEngine::observe(Property property, std::function<void()> changed) {
    return observers_.add([property, changed = std::move(changed)](Property changedProperty) {
        if (changedProperty == property) {
            changed();
        }
    });
}

template <typename Value>
void WebViewEngine::update(Value& value, Value now, Property property) {
    if (value == now) {
        return;
    }
    value = std::move(now);
    observers_.notify(property);
}

void WebViewEngine::updateURL() {
    auto now = fromNSURL(view_.URL);
    if (now || !processEnded_) {
        update(url_, std::move(now), Property::url);
    }
}

void WebViewEngine::updateTitle() {
    if (!processEnded_) {
        update(title_, nonEmpty(view_.title), Property::title);
    }
}

void WebViewEngine::propertyChanged(Property property) noexcept {
    const auto keptAlive = keep();
    if (keptAlive == nullptr) {
        return;
    }
    switch (property) {
    case Property::url:
        updateURL();
        break;
    case Property::title:
        updateTitle();
        break;
    case Property::canGoBack:
    case Property::canGoForward:
    case Property::estimatedProgress:
    case Property::isLoading:
        observers_.notify(property);
        break;
    }
}

// Navigation

/// The program asks for a navigation, which replaces the one under way.
void WebViewEngine::beginNavigation() {
    ownPage_.disarm();
    uncommittedRequest_.reset();
    reloadsWhenVisible_ = false;
}

void WebViewEngine::load(const URLRequest& request) {
    beginNavigation();
    NSURLRequest* const native = toNSURLRequest(request);
    if (native == nil) {
        refuse(request.url);
        return;
    }
    uncommittedRequest_ = request;
    [view_ loadRequest:native];
}

/// Fails a load that cannot even begin, as WebKit fails one: later.
void WebViewEngine::refuse(const URL& url) {
    RunLoop::main().perform([weak = weak_from_this(), text = url.absoluteString()] {
        if (const auto engine = weak.lock()) {
            engine->failedProvisionally([NSError
                errorWithDomain:NSURLErrorDomain
                           code:NSURLErrorBadURL
                       userInfo:@{NSURLErrorFailingURLStringErrorKey : toNSString(text)}]);
        }
    });
}

void WebViewEngine::loadHTMLString(const std::string& html, const std::optional<URL>& baseURL) {
    beginNavigation();
    const auto base = ownPage_.arm(baseURL);
    [view_ loadHTMLString:toNSString(html) baseURL:base ? toNSURL(*base) : nil];
}

void WebViewEngine::reload() {
    const auto interrupted = processEnded_ ? uncommittedRequest_ : std::nullopt;
    if (interrupted) {
        load(*interrupted);
        return;
    }
    beginNavigation();
    [view_ reload];
}

void WebViewEngine::stopLoading() {
    uncommittedRequest_.reset();
    [view_ stopLoading];
}

void WebViewEngine::goBack() {
    if (view_.canGoBack) {
        beginNavigation();
        [view_ goBack];
    }
}

void WebViewEngine::goForward() {
    if (view_.canGoForward) {
        beginNavigation();
        [view_ goForward];
    }
}

void WebViewEngine::setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate) {
    navigationDelegate_ = delegate;
    asksForPolicy_ = std::dynamic_pointer_cast<NavigationPolicyDelegate>(delegate.lock()) != nullptr;
    // WebKit reads what a delegate responds to when it is set, and only then.
    view_.navigationDelegate = nil;
    view_.navigationDelegate = delegate_;
}

void WebViewEngine::committed() noexcept {
    const auto keptAlive = keep();
    if (keptAlive == nullptr) {
        return;
    }
    ownPage_.disarm();
    uncommittedRequest_.reset();
    processEnded_ = false;
    // What changed while the last page was still reported.
    updateURL();
    updateTitle();
}

void WebViewEngine::finished() noexcept {
    const auto keptAlive = keep();
    const auto delegate = navigationDelegate_.lock();
    if (keptAlive != nullptr && delegate != nullptr) {
        delegate->didFinishNavigation(*keptAlive);
    }
}

void WebViewEngine::failed(NSError* error) noexcept {
    const auto keptAlive = keep();
    const auto delegate = navigationDelegate_.lock();
    loadFailed(error);
    if (keptAlive != nullptr && delegate != nullptr) {
        delegate->didFailNavigation(*keptAlive, fromNSError(error));
    }
}

void WebViewEngine::failedProvisionally(NSError* error) noexcept {
    const auto keptAlive = keep();
    const auto delegate = navigationDelegate_.lock();
    loadFailed(error);
    if (keptAlive != nullptr && delegate != nullptr) {
        delegate->didFailProvisionalNavigation(*keptAlive, fromNSError(error));
    }
}

void WebViewEngine::loadFailed(NSError* error) {
    ownPage_.disarm();
    // A cancelled load is usually the previous one, which the present one replaced.
    if (![error.domain isEqualToString:NSURLErrorDomain] || error.code != NSURLErrorCancelled) {
        uncommittedRequest_.reset();
    }
}

// Policy

void WebViewEngine::decidePolicy(WKNavigationAction* action,
                                 const std::shared_ptr<PolicyReply>& reply) noexcept {
    const auto keptAlive = keep();
    if (keptAlive == nullptr) {
        return;
    }
    const auto delegate = std::dynamic_pointer_cast<NavigationPolicyDelegate>(navigationDelegate_.lock());
    const auto ours = fromWKNavigationAction(action);
    // WebKit does not tell redirects apart, but nothing redirects a page that no server sends.
    const bool isOwnPage = action.targetFrame.mainFrame && ownPage_.use(ours, false);
    if (isOwnPage || delegate == nullptr) {
        (*reply)(WKNavigationActionPolicyAllow);
        return;
    }
    delegate->decidePolicy(*keptAlive, ours, [reply](NavigationActionPolicy policy) {
        (*reply)(policy == NavigationActionPolicy::allow ? WKNavigationActionPolicyAllow
                                                         : WKNavigationActionPolicyCancel);
    });
}

// New windows and panels

WKWebView* WebViewEngine::createWebView(WKWebViewConfiguration* configuration,
                                        WKNavigationAction* action) noexcept {
    const auto keptAlive = keep();
    const auto delegate = uiDelegate_.lock();
    if (keptAlive == nullptr || delegate == nullptr) {
        return nil;
    }
    const auto supplied = newWindowConfiguration(configuration, *keptAlive->configuration());
    const auto child = delegate->createWebView(*keptAlive, supplied, fromWKNavigationAction(action));
    if (child == nullptr) {
        return nil;
    }
    if (child->configuration() != supplied) {
        fatalError("A page's new window must be shown by a view made with the configuration supplied for it");
    }
    return static_cast<WKWebView*>(child->native().view);
}

void WebViewEngine::closed() noexcept {
    const auto keptAlive = keep();
    const auto delegate = uiDelegate_.lock();
    if (keptAlive != nullptr && delegate != nullptr) {
        delegate->webViewDidClose(*keptAlive);
    }
}

void WebViewEngine::runAlertPanel(NSString* message, WKFrameInfo* frame,
                                  const std::shared_ptr<AlertReply>& reply) noexcept {
    const auto keptAlive = keep();
    const auto delegate = uiDelegate_.lock();
    if (keptAlive != nullptr && delegate != nullptr) {
        panels_.add(reply);
        delegate->runJavaScriptAlertPanel(*keptAlive, fromNSString(message), fromWKFrameInfo(frame),
                                          [reply] { (*reply)(); });
    }
}

void WebViewEngine::runConfirmPanel(NSString* message, WKFrameInfo* frame,
                                    const std::shared_ptr<ConfirmReply>& reply) noexcept {
    const auto keptAlive = keep();
    const auto delegate = uiDelegate_.lock();
    if (keptAlive != nullptr && delegate != nullptr) {
        panels_.add(reply);
        delegate->runJavaScriptConfirmPanel(*keptAlive, fromNSString(message), fromWKFrameInfo(frame),
                                            [reply](bool confirmed) { (*reply)(confirmed); });
    }
}

// The web process

/// Called before WebKit's view forgets its page.
void WebViewEngine::contentProcessEnded() noexcept {
    const auto keptAlive = keep();
    if (keptAlive == nullptr) {
        return;
    }
    const auto now = Clock::now();
    const bool again = lastProcessEnd_ && now - *lastProcessEnd_ < processEndsInARow;
    lastProcessEnd_ = now;
    processEnded_ = true;
    ownPage_.disarm();
    reloadsWhenVisible_ = !again && url_;
    panels_.answerAllSafely();
    // Only when the view has forgotten its page can it be told to bring it back.
    RunLoop::main().perform([weak = weak_from_this()] {
        if (const auto engine = weak.lock()) {
            engine->recoverIfVisible();
        }
    });
}

void WebViewEngine::windowVisibilityChanged() noexcept { recoverIfVisible(); }

void WebViewEngine::recoverIfVisible() {
    const auto keptAlive = keep();
    if (keptAlive != nullptr && processEnded_ && reloadsWhenVisible_ && isVisible(view_)) {
        reload();
    }
}

} // namespace Platform
