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

/// The platform-independent part of a web view: mirrored values and their observers, calls to delegates, the
/// program's own page, and recovery after the web process ended. A subclass for each platform drives the
/// native view.
///
/// A view owns its engine. The native view may outlive both, but then calls neither. Main thread only.
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

    /// Creates the engine of the platform.
    static std::shared_ptr<WebViewEngine> create(WebViewConfiguration& configuration);

    WebViewEngine(const WebViewEngine&) = delete;
    WebViewEngine& operator=(const WebViewEngine&) = delete;
    /// Gives open panels their safe answers, because a page that waits for an answer stays alive.
    virtual ~WebViewEngine();

    /// Called once, as soon as `owner` can be kept alive. No observer or delegate is called before.
    virtual void setOwner(const std::weak_ptr<WebView>& owner) { owner_ = owner; }
    /// The owner, kept alive for the caller. Null before `setOwner` and after the owner's destruction has
    /// begun.
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

    /// The engine of `view`.
    static WebViewEngine& of(const WebView& view) { return *view.engine_; }

    // Events of the native view. The caller keeps the owner alive.

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
    /// Returns true for the navigation to the program's own page, about which no delegate is asked.
    bool isOwnPage(const NavigationAction& action, bool isRedirect) {
        return ownPage_.use(action, isRedirect);
    }
    void decidePolicy(const NavigationAction& action, const std::shared_ptr<PolicyReply>& reply);

    void committed() { ownPage_.disarm(); }
    void finished();
    /// Called at every failure, reported or not.
    void failed() { ownPage_.disarm(); }
    void report(const Error& error, bool hasCommitted);

    /// Returns the view for a new window, made with `configuration`, or null if it is refused.
    std::shared_ptr<WebView> createWebView(const std::shared_ptr<WebViewConfiguration>& configuration,
                                           const NavigationAction& action);
    void closed();
    void runAlertPanel(const std::string& message, const FrameInfo& frame,
                       const std::shared_ptr<AlertReply>& reply);
    void runConfirmPanel(const std::string& message, const FrameInfo& frame,
                         const std::shared_ptr<ConfirmReply>& reply);
    bool hasOpenPanels() const { return panels_.areOpen(); }

    /// Called before the native view drops its page.
    void webProcessEnded(WebProcessRecovery::Cause cause, std::optional<URLRequest> interrupted);
    void pageReturned() { recovery_.pageReturned(); }
    bool isPageGone() const { return recovery_.isPageGone(); }
    /// Reloads the page if it waits for the view to become visible and the view is visible.
    void catchUp();
    /// Calls `catchUp` in the next iteration of the run loop.
    void catchUpSoon();

private:
    // Operations of the native view. Each replaces the navigation under way.

    virtual void startLoad(const URLRequest& request) = 0;
    /// `baseURL` is absolute.
    virtual void startHTML(const std::string& html, const std::optional<URL>& baseURL) = 0;
    virtual void startReload() = 0;
    virtual void startGoingBack() = 0;
    virtual void startGoingForward() = 0;

    virtual bool isVisible() const = 0;
    /// Returns true if the last requested navigation has not begun, so that there is nothing to reload.
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
