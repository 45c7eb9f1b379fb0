#pragma once

#include "Platform/WebKit/NavigationAction.h"

#include <optional>

namespace Platform {

/// Lets the navigation to a page that the program itself supplies (`WebView::loadHTMLString`) pass without a
/// question to the delegate, once. Engines ask about that page as about any other.
class OwnPagePass {
public:
    /// Arms the pass for a page with that base URL. Returns the one to hand to the engine, which cannot use a
    /// relative reference.
    std::optional<URL> arm(const std::optional<URL>& baseURL);
    /// Called at every commit, failure, cancellation and other load.
    void disarm() { page_.reset(); }

    /// Returns true, and disarms, if `action` is the navigation to the page: of type `other`, not a redirect,
    /// and to the base URL's scheme, host, effective port and path, or to about:blank if there is no base
    /// URL. Engines spell URLs each in their own way, so scheme and host are compared without regard to case.
    bool use(const NavigationAction& action, bool isRedirect);

private:
    struct Page {
        std::optional<URL> baseURL;
    };

    std::optional<Page> page_;
};

} // namespace Platform
