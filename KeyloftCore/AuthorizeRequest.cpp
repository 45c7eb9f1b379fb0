#include "KeyloftCore/AuthorizeRequest.h"

#include "KeyloftCore/HostError.h"
#include "Platform/Foundation/URLComponents.h"

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

/// The first item of that name decides, even if it has no value.
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

/// The text behind the authority's colon; empty where there is none.
std::string_view portText(const Platform::URL& url) {
    const auto scheme = url.scheme();
    std::string_view rest = url.absoluteString();
    rest.remove_prefix(scheme ? scheme->size() + 1 : 0);
    if (!rest.starts_with("//")) {
        return {};
    }
    rest.remove_prefix(2);
    rest = rest.substr(0, rest.find_first_of("/?#"));
    rest.remove_prefix(rest.rfind('@') + 1);
    // Colons inside an IP literal's brackets belong to the host.
    rest.remove_prefix(rest.rfind(']') + 1);
    const auto colon = rest.rfind(':');
    return colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
}

/// What a URL reaches, of which nothing matches a part that cannot be decoded: a host that is not UTF-8 would
/// otherwise count as absent, a port beyond an integer as the scheme's own, and a path that is not UTF-8 as
/// the root.
struct Endpoint {
    std::optional<std::string> scheme;
    std::optional<std::string> host;
    std::optional<std::int64_t> port;
    std::string path;

    static std::optional<Endpoint> of(const Platform::URL& url) {
        auto host = url.host();
        if (!host && !url.percentEncodedHost().value_or("").empty()) {
            return std::nullopt;
        }
        if (!url.port() && !portText(url).empty()) {
            return std::nullopt;
        }
        auto path = url.path();
        if (path.empty()) {
            if (!url.percentEncodedPath().empty()) {
                return std::nullopt;
            }
            path.push_back('/');
        }
        return Endpoint{.scheme = std::optional<std::string>(url.scheme()),
                        .host = std::move(host),
                        .port = AuthorizeRequest::effectivePort(url),
                        .path = std::move(path)};
    }

    friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

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
    const auto endpoint = Endpoint::of(url);
    return endpoint && endpoint == Endpoint::of(redirectURI_);
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
    if (const auto port = url.port()) {
        return port;
    }
    if (url.scheme() == "https") {
        return 443;
    }
    if (url.scheme() == "http") {
        return 80;
    }
    return std::nullopt;
}

} // namespace KeyloftCore
