#pragma once

#include "Platform/Foundation/ObserverList.h"
#include "Platform/WebKit/OwnPagePass.h"
#include "Platform/WebKit/WebView.h"
#include "Platform/WebKit/macos/Reply.h"

#import <WebKit/WebKit.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

@class KeyloftWebViewDelegate;

namespace Platform {

/// What connects a web view with WebKit's. It ends with the view, and all that WebKit tells and asks with it;
/// WebKit's view may live on while AppKit holds it.
///
/// What WebKit calls must not throw: its frames lie behind.
class WebViewEngine : public std::enable_shared_from_this<WebViewEngine> {
public:
    using Property = WebView::Property;
    using PolicyReply = Reply<WKNavigationActionPolicy>;
    using AlertReply = Reply<>;
    using ConfirmReply = Reply<bool>;

    explicit WebViewEngine(WebViewConfiguration& configuration);
    WebViewEngine(const WebViewEngine&) = delete;
    WebViewEngine& operator=(const WebViewEngine&) = delete;
    ~WebViewEngine();

    /// From now on WebKit tells and asks; called once, by the view that owns the engine.
    void connect(const std::weak_ptr<WebView>& owner);

    WKWebView* _Nonnull view() const { return view_; }
    const std::optional<URL>& url() const { return url_; }
    const std::optional<std::string>& title() const { return title_; }

    Observation observe(Property property, std::function<void()> changed);

    void load(const URLRequest& request);
    void loadHTMLString(const std::string& html, const std::optional<URL>& baseURL);
    void reload();
    void stopLoading();
    void goBack();
    void goForward();

    void setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate);
    void setUIDelegate(const std::weak_ptr<UIDelegate>& delegate) { uiDelegate_ = delegate; }

    // What WebKit tells and asks.

    bool asksForPolicy() const { return asksForPolicy_; }
    void propertyChanged(Property property) noexcept;
    void decidePolicy(WKNavigationAction* _Nonnull action,
                      const std::shared_ptr<PolicyReply>& reply) noexcept;
    void committed() noexcept;
    void finished() noexcept;
    void failed(NSError* _Nonnull error) noexcept;
    void failedProvisionally(NSError* _Nonnull error) noexcept;
    void contentProcessEnded() noexcept;
    void windowVisibilityChanged() noexcept;
    WKWebView* _Nullable createWebView(WKWebViewConfiguration* _Nonnull configuration,
                                       WKNavigationAction* _Nonnull action) noexcept;
    void closed() noexcept;
    void runAlertPanel(NSString* _Nonnull message, WKFrameInfo* _Nonnull frame,
                       const std::shared_ptr<AlertReply>& reply) noexcept;
    void runConfirmPanel(NSString* _Nonnull message, WKFrameInfo* _Nonnull frame,
                         const std::shared_ptr<ConfirmReply>& reply) noexcept;

private:
    using Clock = std::chrono::steady_clock;

    /// The owner, kept alive for the caller; nothing when it is on its way out.
    std::shared_ptr<WebView> keep() const { return owner_.lock(); }

    template <typename Value>
    void update(Value& value, Value now, Property property);
    void updateURL();
    void updateTitle();

    void beginNavigation();
    void refuse(const URL& url);
    void loadFailed(NSError* _Nonnull error);
    void recoverIfVisible();

    std::weak_ptr<WebView> owner_;
    WKWebView* __strong _Nonnull const view_;
    KeyloftWebViewDelegate* __strong _Nonnull const delegate_;

    std::optional<URL> url_;
    std::optional<std::string> title_;
    ObserverList<Property> observers_;

    std::weak_ptr<NavigationDelegate> navigationDelegate_;
    std::weak_ptr<UIDelegate> uiDelegate_;
    bool asksForPolicy_ = false;

    /// Panels that wait for the user.
    PendingReplies panels_;

    OwnPagePass ownPage_;

    /// What `load` asked for and nothing was committed of yet: after an end of the web process there is
    /// nothing of it that a reload could bring back.
    std::optional<URLRequest> uncommittedRequest_;
    /// The web process ended and nothing was committed since.
    bool processEnded_ = false;
    bool reloadsWhenVisible_ = false;
    std::optional<Clock::time_point> lastProcessEnd_;
};

} // namespace Platform
