#include "Platform/Foundation/URLEndpoint.h"

#include <string_view>
#include <utility>

namespace Platform {

namespace {

/// Returns the port as it is written in the URL, or an empty string.
std::string_view portText(const URL& url) {
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

} // namespace

std::optional<URLEndpoint> URLEndpoint::of(const URL& url) {
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
    return URLEndpoint{.scheme = std::optional<std::string>(url.scheme()),
                       .host = std::move(host),
                       .port = effectivePort(url),
                       .path = std::move(path)};
}

std::optional<std::int64_t> URLEndpoint::effectivePort(const URL& url) {
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

} // namespace Platform
