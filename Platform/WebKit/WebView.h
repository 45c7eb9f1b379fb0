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

/// A web page and its history. Main thread only.
///
/// The properties mirror those of the native view, which determines what is shown; observers are notified
/// after a property has changed. Unlike other views, a web view creates its native view immediately, because
/// it loads pages even while it is not shown.
///
/// After its web process ended, the view keeps reporting the last URL and title, reports that it is not
/// loading, and reloads the page once when it is next visible. After a second failure within a minute it
/// waits for the user.
class WebView : public View {
public:
    /// The properties that can be observed.
    enum class Property { title, url, canGoBack, canGoForward, estimatedProgress, isLoading };

    static std::shared_ptr<WebView> create(const std::shared_ptr<WebViewConfiguration>& configuration);
    WebView(const WebView&) = delete;
    WebView& operator=(const WebView&) = delete;
    ~WebView() override;

    /// Absent before the first navigation. During a load that the program requested, the URL being loaded; if
    /// the load fails, the URL of the shown page again.
    std::optional<URL> url() const;
    /// Absent if the page has no title.
    std::optional<std::string> title() const;
    bool canGoBack() const;
    bool canGoForward() const;
    /// From 0 to 1. A failed load leaves it unchanged.
    double estimatedProgress() const;
    bool isLoading() const;

    /// Calls `changed` after each change of the property, in the order of registration, but not for the
    /// initial value. `changed` may end the observation and release the view.
    [[nodiscard]] Observation observe(Property property, std::function<void()> changed);

    /// Loads the URL of `request`. The timeout begins with the load, restarts at each redirect and ends when
    /// the page commits.
    void load(const URLRequest& request);

    /// Shows a page that the program supplies. Its origin and the base of its relative links are those of
    /// `baseURL`; without one, it has neither. Does not contact the server of the base URL. The delegate's
    /// policy is not asked about this page, but about everything that the page then does.
    void loadHTMLString(const std::string& html, const std::optional<URL>& baseURL);
    void reload();
    void stopLoading();
    void goBack();
    void goForward();

    /// Allows or forbids going back and forward by swiping sideways.
    void setAllowsBackForwardNavigationGestures(bool allows);

    /// The delegate is held weakly. A `NavigationPolicyDelegate` is recognized at this call.
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
