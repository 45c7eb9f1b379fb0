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

/// What web views do alike on every system: they mirror the engine's values for their observers, pass on what
/// it tells and asks to their delegates, show the program's own page and bring pages back whose web process
/// ended. A subclass for each system drives the engine.
///
/// It ends with its view, and with it all that the engine tells and asks; the native view may live on while
/// the toolkit holds it. Main thread only.
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

    /// The system's engine.
    static std::shared_ptr<WebViewEngine> create(WebViewConfiguration& configuration);

    WebViewEngine(const WebViewEngine&) = delete;
    WebViewEngine& operator=(const WebViewEngine&) = delete;
    /// Gives the panels that are still open their safe answers: a page that waits for one stays alive.
    virtual ~WebViewEngine();

    /// Called once, as soon as the view that owns the engine can be kept alive. Nobody is told or asked
    /// anything before.
    virtual void setOwner(const std::weak_ptr<WebView>& owner) { owner_ = owner; }
    /// The owner, kept alive for the caller; nothing before `setOwner`, and once it is on its way out.
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

    /// That of another view.
    static WebViewEngine& of(const WebView& view) { return *view.engine_; }

    // What the engine tells and asks. The caller keeps the view alive.

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
    /// Whether this is the navigation to the program's own page, which nobody is asked about.
    bool isOwnPage(const NavigationAction& action, bool isRedirect) {
        return ownPage_.use(action, isRedirect);
    }
    void decidePolicy(const NavigationAction& action, const std::shared_ptr<PolicyReply>& reply);

    void committed() { ownPage_.disarm(); }
    void finished();
    /// Ends the pass of the program's own page, whoever is told of the failure.
    void failed() { ownPage_.disarm(); }
    void report(const Error& error, bool hasCommitted);

    /// The view for a new window, made with `configuration`, or nothing.
    std::shared_ptr<WebView> createWebView(const std::shared_ptr<WebViewConfiguration>& configuration,
                                           const NavigationAction& action);
    void closed();
    void runAlertPanel(const std::string& message, const FrameInfo& frame,
                       const std::shared_ptr<AlertReply>& reply);
    void runConfirmPanel(const std::string& message, const FrameInfo& frame,
                         const std::shared_ptr<ConfirmReply>& reply);
    bool hasOpenPanels() const { return panels_.areOpen(); }

    /// Called before the engine forgets its page.
    void webProcessEnded(WebProcessRecovery::Cause cause, std::optional<URLRequest> interrupted);
    void pageReturned() { recovery_.pageReturned(); }
    bool isPageGone() const { return recovery_.isPageGone(); }
    /// Begins what waited until the view is visible, if it is.
    void catchUp();
    /// Does so in the run loop's next turn.
    void catchUpSoon();

private:
    // What the engine is to do. The navigation under way is replaced.

    virtual void startLoad(const URLRequest& request) = 0;
    /// `baseURL` is one that the engine can use.
    virtual void startHTML(const std::string& html, const std::optional<URL>& baseURL) = 0;
    virtual void startReload() = 0;
    virtual void startGoingBack() = 0;
    virtual void startGoingForward() = 0;

    virtual bool isVisible() const = 0;
    /// Whether the last navigation has not begun, so that there is nothing to reload yet.
    virtual bool isLoadPending() const { return false; }
    /// Begins the pending navigation, for the view is visible.
    virtual void beginPendingLoad() {}

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
