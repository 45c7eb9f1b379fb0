#pragma once

#include "Platform/WebKit/WebViewEngine.h"

#import <WebKit/WebKit.h>

#include <memory>
#include <optional>
#include <string>

@class KeyloftWebViewDelegate;

namespace Platform {

/// Engine implementation that drives a `WKWebView`. Functions that WebKit calls are noexcept, because an
/// exception must not propagate through WebKit's stack frames.
class WKWebViewEngine final : public WebViewEngine {
public:
    explicit WKWebViewEngine(WebViewConfiguration& configuration);
    WKWebViewEngine(const WKWebViewEngine&) = delete;
    WKWebViewEngine& operator=(const WKWebViewEngine&) = delete;
    ~WKWebViewEngine() override;

    void setOwner(const std::weak_ptr<WebView>& owner) override;
    void stopLoading() override;
    void setAllowsBackForwardNavigationGestures(bool allows) override;
    void performEditing(Action action) override;
    void setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate) override;

    // Called by `KeyloftWebViewDelegate`.

    using WebViewEngine::asksForPolicy;
    void propertyChanged(Property property) noexcept;
    void decidePolicyFor(WKNavigationAction* _Nonnull action,
                         const std::shared_ptr<PolicyReply>& reply) noexcept;
    void didCommit() noexcept;
    void didFinish() noexcept { finished(); }
    void didFail(NSError* _Nonnull error, bool hasCommitted) noexcept;
    void contentProcessEnded() noexcept;
    void windowVisibilityChanged() noexcept { catchUp(); }
    WKWebView* _Nullable createNativeView(WKWebViewConfiguration* _Nonnull configuration,
                                          WKNavigationAction* _Nonnull action) noexcept;
    void didClose() noexcept { closed(); }
    void runAlertPanelFor(NSString* _Nonnull message, WKFrameInfo* _Nonnull frame,
                          const std::shared_ptr<AlertReply>& reply) noexcept;
    void runConfirmPanelFor(NSString* _Nonnull message, WKFrameInfo* _Nonnull frame,
                            const std::shared_ptr<ConfirmReply>& reply) noexcept;

private:
    friend class WebView;

    void startLoad(const URLRequest& request) override;
    void startHTML(const std::string& html, const std::optional<URL>& baseURL) override;
    void startReload() override;
    void startGoingBack() override;
    void startGoingForward() override;
    bool isVisible() const override;

    void refuse(const URL& url);

    WKWebView* __strong _Nonnull const view_;
    KeyloftWebViewDelegate* __strong _Nonnull const delegate_;
    /// The request for the current load. Reset when the load commits, fails, is stopped or is replaced.
    std::optional<URLRequest> uncommittedRequest_;
};

} // namespace Platform
