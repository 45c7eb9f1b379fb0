#include "Platform/WebKit/OwnPagePass.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/URLEndpoint.h"

#include <cstddef>
#include <string_view>

namespace Platform {

namespace {

std::optional<URLEndpoint> caseFoldedEndpoint(const URL& url) {
    const std::string_view text = url.absoluteString();
    const auto pathOffset = static_cast<std::size_t>(url.percentEncodedPath().data() - text.data());
    const auto folded =
        URL::fromString(asciiLowercased(text.substr(0, pathOffset)) + std::string(text.substr(pathOffset)));
    return folded ? URLEndpoint::of(*folded) : std::nullopt;
}

} // namespace

std::optional<URL> OwnPagePass::arm(const std::optional<URL>& baseURL) {
    page_ = Page{.baseURL = baseURL && baseURL->scheme() ? baseURL : std::nullopt};
    return page_->baseURL;
}

bool OwnPagePass::use(const NavigationAction& action, bool isRedirect) {
    if (!page_ || !action.url || isRedirect || action.navigationType != NavigationType::other) {
        return false;
    }
    bool isPage = action.url->absoluteString() == "about:blank";
    if (const auto& baseURL = page_->baseURL) {
        const auto endpoint = caseFoldedEndpoint(*baseURL);
        isPage = endpoint && endpoint == caseFoldedEndpoint(*action.url);
    }
    if (isPage) {
        disarm();
    }
    return isPage;
}

} // namespace Platform
