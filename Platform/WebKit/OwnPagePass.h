#pragma once

#include "Platform/WebKit/NavigationAction.h"

#include <optional>

namespace Platform {

/// Allows one navigation to a page that the application supplies (`WebView::loadHTMLString`) without
/// consulting the delegate. WebKit requests a policy decision for these pages too.
class OwnPagePass {
public:
    /// Arms the pass for a page with the given base URL. Returns the base URL to pass to WebKit: `baseURL` if
    /// it is absolute, otherwise nothing, because WebKit cannot use a relative reference.
    std::optional<URL> arm(const std::optional<URL>& baseURL);
    /// Revokes the pass. Called on every commit, failure and cancellation, and before every other load.
    void disarm() { page_.reset(); }

    /// Returns true and disarms the pass if `action` is the navigation to the supplied page. The navigation
    /// must have the type `other` and must not be a redirect. Its scheme, host, effective port and path must
    /// match those of the base URL; without a base URL, it must lead to about:blank. Scheme and host are
    /// compared case-insensitively, because WebKit may change their case.
    bool use(const NavigationAction& action, bool isRedirect);

private:
    struct Page {
        std::optional<URL> baseURL;
    };

    std::optional<Page> page_;
};

} // namespace Platform
