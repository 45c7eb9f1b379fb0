#pragma once

#include "Platform/AppKit/View.h"
#include "Platform/Foundation/Observation.h"
#include "Platform/Foundation/URL.h"
#include "Platform/Foundation/URLRequest.h"
#include "Platform/WebKit/NavigationDelegate.h"
#include "Platform/WebKit/UIDelegate.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Platform {

class WebViewEngine;

/// A view that shows web pages and keeps their history. Main thread only.
///
/// The properties mirror those of the native view. Observers are notified after a property has changed.
/// Unlike other views, a web view creates its native view immediately, because it loads pages even while it
/// is not shown.
///
/// If the web process terminates, the view keeps reporting the last URL and title, reports that it is not
/// loading, and reloads the page once, as soon as the view is visible. After a second failure within a
/// minute, it does not reload the page until the user requests it.
class WebView : public View {
public:
    /// The properties that can be observed.
    enum class Property { title, url, canGoBack, canGoForward, estimatedProgress, isLoading };

    static std::shared_ptr<WebView> create(const std::shared_ptr<WebViewConfiguration>& configuration);
    WebView(const WebView&) = delete;
    WebView& operator=(const WebView&) = delete;
    ~WebView() override;

    /// The URL of the page or, during a load that the application requested, the URL being loaded. If that
    /// load fails, the URL reverts to that of the shown page. Absent before the first navigation.
    std::optional<URL> url() const;
    /// The title of the page. Absent if the page does not have a title.
    std::optional<std::string> title() const;
    bool canGoBack() const;
    bool canGoForward() const;
    /// The progress of the load, from 0 to 1. A failed load leaves it unchanged.
    double estimatedProgress() const;
    bool isLoading() const;

    /// Calls `changed` after each change of the property, but not for the initial value. Observers are called
    /// in the order of registration. `changed` may end the observation and release the view.
    [[nodiscard]] Observation observe(Property property, std::function<void()> changed);

    /// Loads the URL of `request`. The timeout restarts at each redirect and stops when the page commits.
    void load(const URLRequest& request);

    /// Shows a page that the application supplies. `baseURL` provides the origin of the page and the base of
    /// its relative links; without it, the page has neither. The server of the base URL is not contacted. The
    /// delegate is not asked for a policy decision about the page itself, but it is asked about every
    /// navigation that the page then requests.
    void loadHTMLString(const std::string& html, const std::optional<URL>& baseURL);
    void reload();
    void stopLoading();
    void goBack();
    void goForward();

    /// Enables or disables swiping sideways to go back and forward.
    void setAllowsBackForwardNavigationGestures(bool allows);

    /// Sets the delegate, which is held weakly. A `NavigationPolicyDelegate` also makes policy decisions.
    void setNavigationDelegate(const std::weak_ptr<NavigationDelegate>& delegate);
    void setUIDelegate(const std::weak_ptr<UIDelegate>& delegate);

    const std::shared_ptr<WebViewConfiguration>& configuration() const { return configuration_; }

    bool respondsTo(Action action) const override;
    void perform(Action action, const ActionSender& sender) override;

protected:
    explicit WebView(std::shared_ptr<WebViewConfiguration> configuration);
    std::unique_ptr<Native> makeNative() override;

private:
    friend class WebViewEngine;

    std::shared_ptr<WebViewConfiguration> configuration_;
    std::shared_ptr<WebViewEngine> engine_;
};

} // namespace Platform
