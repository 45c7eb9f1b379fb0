#pragma once

#include "Platform/Foundation/ObserverList.h"
#include "Platform/WebKit/OwnPagePass.h"
#include "Platform/WebKit/Reply.h"
#include "Platform/WebKit/WebProcessRecovery.h"
#include "Platform/WebKit/WebView.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Platform {

/// The platform-independent part of a web view: the mirrored values and their observers, the calls to
/// delegates, pages supplied by the application, and recovery after the web process terminates. Each platform
/// has a subclass that drives the native view.
///
/// A view owns its engine. The native view may outlive both, but must not call them then. Main thread only.
class WebViewEngine : public std::enable_shared_from_this<WebViewEngine> {
public:
    using Property = WebView::Property;
    using PolicyReply = Reply<NavigationActionPolicy>;
    using AlertReply = Reply<>;
    using ConfirmReply = Reply<bool>;

    /// The values of a view's properties.
    struct Values {
        std::optional<URL> url;
        std::optional<std::string> title;
        bool canGoBack = false;
        bool canGoForward = false;
        double estimatedProgress = 0;
        bool isLoading = false;
    };

    /// Creates the engine for the current platform.
    static std::shared_ptr<WebViewEngine> create(WebViewConfiguration& configuration);

    WebViewEngine(const WebViewEngine&) = delete;
    WebViewEngine& operator=(const WebViewEngine&) = delete;
    /// Completes the replies of open panels, because WebKit keeps a page alive while it waits for a reply.
    virtual ~WebViewEngine();

    /// Sets the web view that owns the engine. Called once, before any observer or delegate is called.
    virtual void setOwner(const std::weak_ptr<WebView>& owner) { owner_ = owner; }
    /// Returns a strong reference to the web view, or null before `setOwner` and during its destruction.
    std::shared_ptr<WebView> keepAlive() const { return owner_.lock(); }

    const Values& values() const { return values_; }
    Observation observe(Property property, std::function<void()> changed);

    void load(const URLRequest& request);
    void loadHTMLString(const std::string& html, const std::optional<URL>& baseURL);
    void reload();
    virtual void stopLoading() = 0;
    void goBack();
    void goForward();
    virtual void setAllowsBackForwardNavigationGestures(bool allows) = 0;
    virtual void performEditing(Action action) = 0;

    virtual void setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate);
    void setUIDelegate(const std::weak_ptr<UIDelegate>& delegate) { uiDelegate_ = delegate; }

protected:
    WebViewEngine() = default;

    static WebViewEngine& of(const WebView& view) { return *view.engine_; }

    // Events of the native view. The caller keeps the web view alive during the call.

    template <typename Value>
    void update(Value Values::* member, Value value, Property property) {
        if (values_.*member != value) {
            values_.*member = std::move(value);
            observers_.notify(property);
        }
    }
    void urlChanged(std::optional<URL> url);
    void titleChanged(std::optional<std::string> title);

    bool asksForPolicy() const { return !policyDelegate_.expired(); }
    /// Returns true for the navigation to a page supplied by the application, which needs no policy decision.
    bool isOwnPage(const NavigationAction& action, bool isRedirect) {
        return ownPage_.use(action, isRedirect);
    }
    void decidePolicy(const NavigationAction& action, const std::shared_ptr<PolicyReply>& reply);

    void committed() { ownPage_.disarm(); }
    void finished();
    /// Called on every load failure, even if it is not reported to the delegate.
    void failed() { ownPage_.disarm(); }
    void report(const Error& error, bool hasCommitted);

    /// Returns the view for a new window, created with `configuration`, or null if the window is refused.
    std::shared_ptr<WebView> createWebView(const std::shared_ptr<WebViewConfiguration>& configuration,
                                           const NavigationAction& action);
    void closed();
    void runAlertPanel(const std::string& message, const FrameInfo& frame,
                       const std::shared_ptr<AlertReply>& reply);
    void runConfirmPanel(const std::string& message, const FrameInfo& frame,
                         const std::shared_ptr<ConfirmReply>& reply);
    bool hasOpenPanels() const { return panels_.areOpen(); }

    /// Called when the web process has terminated, before the native view discards its page.
    void webProcessEnded(WebProcessRecovery::Cause cause, std::optional<URLRequest> interrupted);
    void pageReturned() { recovery_.pageReturned(); }
    bool isPageGone() const { return recovery_.isPageGone(); }
    /// Reloads the page if a reload is pending and the view is visible.
    void catchUp();
    /// Calls `catchUp` in a later iteration of the run loop.
    void catchUpSoon();

private:
    // Operations of the native view. Each operation replaces the current navigation.

    virtual void startLoad(const URLRequest& request) = 0;
    /// If present, `baseURL` is absolute.
    virtual void startHTML(const std::string& html, const std::optional<URL>& baseURL) = 0;
    virtual void startReload() = 0;
    virtual void startGoingBack() = 0;
    virtual void startGoingForward() = 0;

    virtual bool isVisible() const = 0;
    /// Returns true if the last requested navigation has not started yet, so that there is nothing to reload.
    virtual bool isLoadPending() const { return false; }

    void requestNavigation();

    std::weak_ptr<WebView> owner_;
    Values values_;
    ObserverList<Property> observers_;
    std::weak_ptr<NavigationDelegate> navigationDelegate_;
    std::weak_ptr<NavigationPolicyDelegate> policyDelegate_;
    std::weak_ptr<UIDelegate> uiDelegate_;
    OwnPagePass ownPage_;
    PendingReplies panels_;
    WebProcessRecovery recovery_;
};

} // namespace Platform
