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

/// A page and its history. Main thread only.
///
/// The engine is the source of truth for what is shown; the values here change with it and are told to
/// observers after they changed. Unlike other views its native side is made at once, for it loads whether it
/// is shown or not.
///
/// After the engine's web process ended the view goes on reporting its last URL and title, reports that
/// nothing loads, and reloads once when it is next visible; a second end within a minute waits for the user.
class WebView : public View {
public:
    /// The properties that can be observed.
    enum class Property { title, url, canGoBack, canGoForward, estimatedProgress, isLoading };

    static std::shared_ptr<WebView> create(const std::shared_ptr<WebViewConfiguration>& configuration);
    WebView(const WebView&) = delete;
    WebView& operator=(const WebView&) = delete;
    ~WebView() override;

    /// Nothing before the first navigation. While a load that the program asked for is under way this is
    /// already its URL; should it fail, the shown page's again.
    std::optional<URL> url() const;
    /// Nothing when the page has none.
    std::optional<std::string> title() const;
    bool canGoBack() const;
    bool canGoForward() const;
    /// 0 to 1; after a failed load it stays as it was.
    double estimatedProgress() const;
    bool isLoading() const;

    /// Calls `changed` after each change of the property, never at first, in the order of the calls of
    /// `observe`. May be ended, and the view let go, from inside the call.
    [[nodiscard]] Observation observe(Property property, std::function<void()> changed);

    /// The request's time-out begins now and at each redirect, and ends when the page begins to show.
    void load(const URLRequest& request);

    /// Shows a page of the program's own, whose origin and relative links are those of `baseURL`, or of
    /// nowhere without one. Nothing is asked of the base URL's server, and the delegate's policy is not asked
    /// about this one page; it is asked about everything that the page then does.
    void loadHTMLString(const std::string& html, const std::optional<URL>& baseURL);
    void reload();
    void stopLoading();
    void goBack();
    void goForward();

    /// Swiping sideways goes back and forward.
    void setAllowsBackForwardNavigationGestures(bool allows);

    /// Whether it is a `NavigationPolicyDelegate` is read now.
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
