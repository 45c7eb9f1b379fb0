#include "KeyloftCore/AuthorizeRequest.h"

#include "KeyloftCore/HostError.h"
#include "Platform/Foundation/URLComponents.h"
#include "Platform/Foundation/URLEndpoint.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace KeyloftCore {

namespace {

constexpr std::string_view authorizePath = "/auth/authorize";

using QueryItems = std::vector<Platform::URLQueryItem>;

bool isAuthorizeURL(const Platform::URL& url) {
    return url.scheme() == "https" && url.host() == AuthorizeRequest::authorizationHost &&
           url.path() == authorizePath;
}

/// Returns the value of the first query item with the given name. Returns nothing if that item has no value,
/// even if a later item with the same name has one.
std::optional<std::string> param(std::string_view name, const QueryItems& items) {
    const auto found = std::ranges::find(items, name, &Platform::URLQueryItem::name);
    return found == items.end() ? std::nullopt : found->value;
}

QueryItems queryItems(const Platform::URL& url) {
    return Platform::URLComponents(url).queryItems().value_or(QueryItems());
}

Platform::URL redirectURIOf(const QueryItems& items) {
    if (const auto text = param("redirect_uri", items)) {
        if (auto url = Platform::URL::fromString(*text); url && url->scheme() == "https") {
            return *std::move(url);
        }
    }
    throw HostError::badRequest("redirect_uri missing or not https");
}

Platform::URL authorizeURL(Platform::URL url) {
    if (!isAuthorizeURL(url)) {
        throw HostError::badRequest("not an " + std::string(AuthorizeRequest::authorizationHost) +
                                    std::string(authorizePath) + " URL");
    }
    return url;
}

} // namespace

AuthorizeRequest::AuthorizeRequest(Platform::URL url, std::string relayNonce)
    : url_(authorizeURL(std::move(url)))
    , redirectURI_(redirectURIOf(queryItems(url_)))
    , relayNonce_(std::move(relayNonce)) {
    const auto items = queryItems(url_);
    const auto mode = param("response_mode", items).value_or("query");
    responseMode_ = responseModeFromRawValue(mode).value_or(ResponseMode::query);
    state_ = param("state", items);
}

bool AuthorizeRequest::matchesRedirect(const Platform::URL& url) const {
    const auto endpoint = Platform::URLEndpoint::of(url);
    return endpoint && endpoint == Platform::URLEndpoint::of(redirectURI_);
}

bool AuthorizeRequest::matchesNonce(const Platform::JSONValue* value) const {
    const auto* text = value == nullptr ? nullptr : value->string();
    return text != nullptr && *text == relayNonce_;
}

RelayTarget AuthorizeRequest::relayTarget() const {
    return {.redirectURI = redirectURI_, .state = state_, .nonce = relayNonce_};
}

Platform::URL AuthorizeRequest::safariRelayURL() const {
    Platform::URLComponents components(url_);
    auto items = components.percentEncodedQueryItems().value_or(QueryItems());
    const auto mode = std::ranges::find(items, "response_mode", &Platform::URLQueryItem::name);
    if (mode != items.end()) {
        mode->value = "form_post";
    } else {
        items.push_back({.name = "response_mode", .value = "form_post"});
    }
    components.setPercentEncodedQueryItems(items);
    components.setFragment(relayTarget().fragment());
    return components.url().value_or(url_);
}

std::optional<std::int64_t> AuthorizeRequest::effectivePort(const Platform::URL& url) {
    return Platform::URLEndpoint::effectivePort(url);
}

} // namespace KeyloftCore
