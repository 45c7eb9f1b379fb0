#include "Platform/WebKit/macos/WKWebViewEngine.h"

#include "Platform/AppKit/macos/ResponderProxy.h"
#include "Platform/AppKit/macos/ViewNative.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/macos/Conversions.h"
#include "Platform/WebKit/macos/Conversions.h"
#include "Platform/WebKit/macos/WebViewConfigurationNative.h"
#include "Platform/WebKit/macos/WebViewDelegate.h"

#include <utility>

/// WKWebView precedes the window's controller in the responder chain and implements some of the application's
/// actions. Leave these actions to the controller, which validates them.
@interface KeyloftWebView : WKWebView
@end

@implementation KeyloftWebView
- (BOOL)respondsToSelector:(SEL)selector {
    const bool isControllers = selector == @selector(reload:) || selector == @selector(stopLoading:) ||
                               selector == @selector(goBack:) || selector == @selector(goForward:);
    return !isControllers && [super respondsToSelector:selector];
}
@end

namespace Platform {

namespace {

std::optional<std::string> nonEmpty(NSString* text) {
    return text.length > 0 ? std::optional(fromNSString(text)) : std::nullopt;
}

} // namespace

std::shared_ptr<WebViewEngine> WebViewEngine::create(WebViewConfiguration& configuration) {
    return std::make_shared<WKWebViewEngine>(configuration);
}

WKWebViewEngine::WKWebViewEngine(WebViewConfiguration& configuration)
    : view_([[KeyloftWebView alloc] initWithFrame:NSZeroRect
                                    configuration:nativeConfiguration(configuration)])
    , delegate_([[KeyloftWebViewDelegate alloc] init]) {}

void WKWebViewEngine::setOwner(const std::weak_ptr<WebView>& owner) {
    WebViewEngine::setOwner(owner);
    delegate_->engine = std::static_pointer_cast<WKWebViewEngine>(shared_from_this());
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

WKWebViewEngine::~WKWebViewEngine() {
    [NSNotificationCenter.defaultCenter removeObserver:delegate_];
    for (const auto& key : observedKeys()) {
        [view_ removeObserver:delegate_ forKeyPath:key.keyPath context:const_cast<ObservedKey*>(&key)];
    }
    view_.navigationDelegate = nil;
    view_.UIDelegate = nil;
    // Keep the WKWebView alive until the WebKit callback that may have destroyed this object has returned.
    RunLoop::main().perform([keptAlive = view_] { (void)keptAlive; });
}

std::unique_ptr<View::Native> WebView::makeNative() {
    return std::make_unique<Native>(static_cast<const WKWebViewEngine&>(*engine_).view_);
}

void WKWebViewEngine::propertyChanged(Property property) noexcept {
    const auto keptAlive = keepAlive();
    if (keptAlive == nullptr) {
        return;
    }
    switch (property) {
    case Property::url:
        urlChanged(fromNSURL(view_.URL));
        break;
    case Property::title:
        titleChanged(nonEmpty(view_.title));
        break;
    case Property::canGoBack:
        update(&Values::canGoBack, view_.canGoBack == YES, property);
        break;
    case Property::canGoForward:
        update(&Values::canGoForward, view_.canGoForward == YES, property);
        break;
    case Property::estimatedProgress:
        update(&Values::estimatedProgress, view_.estimatedProgress, property);
        break;
    case Property::isLoading:
        update(&Values::isLoading, view_.loading == YES, property);
        break;
    }
}

void WKWebViewEngine::startLoad(const URLRequest& request) {
    NSURLRequest* const native = toNSURLRequest(request);
    if (native == nil) {
        uncommittedRequest_.reset();
        refuse(request.url);
        return;
    }
    uncommittedRequest_ = request;
    [view_ loadRequest:native];
}

/// Reports asynchronously, as WebKit does, that the load of `url` cannot start.
void WKWebViewEngine::refuse(const URL& url) {
    RunLoop::main().perform([this, weak = weak_from_this(), text = url.absoluteString()] {
        if (const auto engine = weak.lock()) {
            didFail([NSError errorWithDomain:NSURLErrorDomain
                                        code:NSURLErrorBadURL
                                    userInfo:@{NSURLErrorFailingURLStringErrorKey : toNSString(text)}],
                    false);
        }
    });
}

void WKWebViewEngine::startHTML(const std::string& html, const std::optional<URL>& baseURL) {
    uncommittedRequest_.reset();
    [view_ loadHTMLString:toNSString(html) baseURL:baseURL ? toNSURL(*baseURL) : nil];
}

void WKWebViewEngine::startReload() {
    uncommittedRequest_.reset();
    [view_ reload];
}

void WKWebViewEngine::stopLoading() {
    uncommittedRequest_.reset();
    [view_ stopLoading];
}

void WKWebViewEngine::startGoingBack() {
    uncommittedRequest_.reset();
    [view_ goBack];
}

void WKWebViewEngine::startGoingForward() {
    uncommittedRequest_.reset();
    [view_ goForward];
}

void WKWebViewEngine::setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate) {
    WebViewEngine::setNavigationDelegate(delegate);
    // WKWebView checks which methods a delegate implements only when the delegate is set.
    view_.navigationDelegate = nil;
    view_.navigationDelegate = delegate_;
}

void WKWebViewEngine::didCommit() noexcept {
    const auto keptAlive = keepAlive();
    if (keptAlive == nullptr) {
        return;
    }
    committed();
    uncommittedRequest_.reset();
    pageReturned();
    // Update the URL and the title, because changes were ignored after the web process exited.
    urlChanged(fromNSURL(view_.URL));
    titleChanged(nonEmpty(view_.title));
}

void WKWebViewEngine::didFail(NSError* error, bool hasCommitted) noexcept {
    failed();
    // A cancelled load has usually been replaced by the current load. Keep the request of the current load.
    if (![error.domain isEqualToString:NSURLErrorDomain] || error.code != NSURLErrorCancelled) {
        uncommittedRequest_.reset();
    }
    report(fromNSError(error), hasCommitted);
}

void WKWebViewEngine::decidePolicyFor(WKNavigationAction* action,
                                      const std::shared_ptr<PolicyReply>& reply) noexcept {
    const auto ours = fromWKNavigationAction(action);
    // WKNavigationAction has no redirect flag, but pages supplied by the application are never redirected.
    if (action.targetFrame.mainFrame && isOwnPage(ours, false)) {
        (*reply)(NavigationActionPolicy::allow);
    } else {
        decidePolicy(ours, reply);
    }
}

WKWebView* WKWebViewEngine::createNativeView(WKWebViewConfiguration* configuration,
                                             WKNavigationAction* action) noexcept {
    const auto opener = keepAlive();
    if (opener == nullptr) {
        return nil;
    }
    const auto child = createWebView(newWindowConfiguration(configuration, *opener->configuration()),
                                     fromWKNavigationAction(action));
    return child != nullptr ? static_cast<WKWebView*>(child->native().view) : nil;
}

void WKWebViewEngine::runAlertPanelFor(NSString* message, WKFrameInfo* frame,
                                       const std::shared_ptr<AlertReply>& reply) noexcept {
    runAlertPanel(fromNSString(message), fromWKFrameInfo(frame), reply);
}

void WKWebViewEngine::runConfirmPanelFor(NSString* message, WKFrameInfo* frame,
                                         const std::shared_ptr<ConfirmReply>& reply) noexcept {
    runConfirmPanel(fromNSString(message), fromWKFrameInfo(frame), reply);
}

void WKWebViewEngine::contentProcessEnded() noexcept {
    const auto keptAlive = keepAlive();
    if (keptAlive != nullptr) {
        webProcessEnded(WebProcessRecovery::Cause::failure, std::exchange(uncommittedRequest_, {}));
    }
}

bool WKWebViewEngine::isVisible() const {
    NSWindow* const window = view_.window;
    return window != nil && (window.occlusionState & NSWindowOcclusionStateVisible) != 0;
}

void WKWebViewEngine::setAllowsBackForwardNavigationGestures(bool allows) {
    view_.allowsBackForwardNavigationGestures = allows ? YES : NO;
}

void WKWebViewEngine::performEditing(Action action) {
    // Search the responder chain, because the window handles undo and redo, using the page's undo manager.
    [view_ tryToPerform:selectorFor(action) with:nil];
}

} // namespace Platform
