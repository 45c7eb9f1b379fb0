#include "KeyloftCore/RedirectCapture.h"

#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/Log.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URLComponents.h"

#include <array>
#include <utility>
#include <vector>

namespace KeyloftCore {

namespace {

constexpr std::string_view providerSuffix = ".apple.com";
constexpr std::string_view contentDeliverySuffix = ".cdn-apple.com";

using Parameters = std::map<std::string, std::string>;
using QueryItems = std::optional<std::vector<Platform::URLQueryItem>>;

void add(const QueryItems& items, Parameters& parameters) {
    if (!items) {
        return;
    }
    for (const auto& item : *items) {
        parameters.insert_or_assign(item.name, item.value.value_or(""));
    }
}

void addQueryText(const std::string& text, Parameters& parameters) {
    if (const auto components = Platform::URLComponents::fromString("?" + text)) {
        add(components->queryItems(), parameters);
    }
}

void addBody(const Platform::NavigationAction& action, const std::optional<SubmittedForm>& lastSubmittedForm,
             Parameters& parameters) {
    if (action.body && Platform::isValidUTF8(*action.body)) {
        log("POST body present (" + std::to_string(action.body->size()) + " bytes)");
        addQueryText(*action.body, parameters);
        return;
    }
    if (const auto text = action.bodyStream ? RedirectCapture::read(*action.bodyStream) : std::nullopt) {
        log("POST body via stream (" + std::to_string(Platform::characterCount(*text)) + " chars)");
        addQueryText(*text, parameters);
        return;
    }
    if (!lastSubmittedForm) {
        log("POST body missing and no hooked form");
        return;
    }
    log("POST body missing; using hooked form fields for " + lastSubmittedForm->shownAction());
    for (const auto& [name, value] : lastSubmittedForm->fields) {
        parameters.insert_or_assign(name, value);
    }
}

std::string shown(const Parameters& parameters, const std::string& name) {
    const auto found = parameters.find(name);
    return found == parameters.end() ? "-" : redact(found->second);
}

} // namespace

std::string RedirectCapture::shownURL(const Platform::URL& url) {
    return Platform::characterPrefix(url.absoluteString(), 100);
}

std::string RedirectCapture::nameList(const Parameters& fields) {
    std::string list;
    for (const auto& [name, value] : fields) {
        list += (list.empty() ? "\"" : ", \"") + name + "\"";
    }
    return "[" + list + "]";
}

bool RedirectCapture::isProviderHost(std::string_view host) {
    return host == AuthorizeRequest::authorizationHost || host.ends_with(providerSuffix) ||
           host.ends_with(contentDeliverySuffix);
}

std::string RedirectCapture::navigationLine(const Platform::URL& url,
                                            const Platform::NavigationAction& action) {
    const auto bodySize = action.body ? std::to_string(action.body->size()) : "-1";
    return "nav " + action.method.value_or("GET") + " " + shownURL(url) + " body=" + bodySize +
           " stream=" + (action.bodyStream ? "true" : "false") +
           " type=" + std::to_string(static_cast<int>(action.navigationType));
}

Parameters RedirectCapture::parameters(const Platform::URL& url, const Platform::NavigationAction& action,
                                       const std::optional<SubmittedForm>& lastSubmittedForm) {
    Parameters parameters;
    const Platform::URLComponents components(url);
    add(components.queryItems(), parameters);
    if (const auto fragment = components.fragment()) {
        addQueryText(*fragment, parameters);
    }
    if (action.method == "POST") {
        addBody(action, lastSubmittedForm, parameters);
    }
    log("captured keys=" + nameList(parameters) + " code=" + shown(parameters, "code") +
        " state=" + shown(parameters, "state"));
    return parameters;
}

std::optional<std::string> RedirectCapture::read(Platform::InputStream& stream) {
    std::string bytes;
    std::array<char, 4096> buffer = {};
    stream.open();
    while (stream.hasBytesAvailable()) {
        const auto count = stream.read(buffer);
        if (count <= 0) {
            break;
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    stream.close();
    return Platform::isValidUTF8(bytes) ? std::optional(std::move(bytes)) : std::nullopt;
}

std::string RedirectCapture::bootstrapPage(const Platform::URL& authorizeURL) {
    return "<!doctype html><script>location.href = " +
           Platform::jsonStringLiteral(authorizeURL.absoluteString()) + "</script>";
}

} // namespace KeyloftCore
