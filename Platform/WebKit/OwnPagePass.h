#pragma once

#include "Platform/WebKit/NavigationAction.h"

#include <optional>

namespace Platform {

/// Allows the navigation to a page that the program supplies (`WebView::loadHTMLString`) once, without asking
/// the delegate. WebKit asks for a policy decision about such a page as about any other.
class OwnPagePass {
public:
    /// Arms the pass for a page with `baseURL`. Returns the base URL to pass to WebKit, which cannot use a
    /// relative reference: `baseURL` if it is absolute, otherwise nothing.
    std::optional<URL> arm(const std::optional<URL>& baseURL);
    /// Called at every commit, failure and cancellation, and before every other load.
    void disarm() { page_.reset(); }

    /// Returns true, and disarms, if `action` is the navigation to the page: of type `other`, not a redirect,
    /// and to the base URL's scheme, host, effective port and path, or to about:blank if there is no base
    /// URL. Scheme and host are compared case-insensitively, because WebKit may change their case.
    bool use(const NavigationAction& action, bool isRedirect);

private:
    struct Page {
        std::optional<URL> baseURL;
    };

    std::optional<Page> page_;
};

} // namespace Platform
