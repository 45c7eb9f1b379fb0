#include "KeyloftCore/RelayResult.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace KeyloftCore {

namespace {

using Case = RelayResult::ParseError::Case;

std::optional<std::map<std::string, std::string>> stringMembers(const Platform::JSONValue* value) {
    const auto* object = value == nullptr ? nullptr : value->object();
    if (object == nullptr) {
        return std::nullopt;
    }
    std::map<std::string, std::string> members;
    for (const auto& [name, member] : *object) {
        const auto* text = member.string();
        if (text == nullptr) {
            return std::nullopt;
        }
        members.emplace_hint(members.end(), name, *text);
    }
    return members;
}

bool namesRedirect(const Platform::JSONValue& message, const AuthorizeRequest& request) {
    const auto* text = message.stringMember("redirectUri");
    const auto url = text == nullptr ? std::nullopt : Platform::URL::fromString(*text);
    return url && request.matchesRedirect(*url);
}

} // namespace

const char* RelayResult::ParseError::what() const noexcept {
    switch (kind_) {
    case Case::notAResult:
        return "notAResult";
    case Case::badParams:
        return "badParams";
    case Case::redirectMismatch:
        return "redirectMismatch";
    case Case::stateMismatch:
        return "stateMismatch";
    case Case::nonceMismatch:
        return "nonceMismatch";
    }
    return "";
}

AuthResult RelayResult::parse(std::string_view data, const AuthorizeRequest& request) {
    const auto message = Platform::JSONValue::parse(data);
    if (!message) {
        throw ParseError(Case::notAResult);
    }
    return parseMessage(*message, request);
}

AuthResult RelayResult::parseMessage(const Platform::JSONValue& message, const AuthorizeRequest& request) {
    const auto* type = message.stringMember("type");
    if (type == nullptr || *type != "result") {
        throw ParseError(Case::notAResult);
    }
    auto params = stringMembers(message.member("params"));
    if (!params) {
        throw ParseError(Case::badParams);
    }
    if (!namesRedirect(message, request)) {
        throw ParseError(Case::redirectMismatch);
    }
    std::optional<std::string> state;
    if (const auto found = params->find("state"); found != params->end() && !found->second.empty()) {
        state = found->second;
    }
    if (state != request.state()) {
        throw ParseError(Case::stateMismatch);
    }
    if (!request.matchesNonce(message.member("nonce"))) {
        throw ParseError(Case::nonceMismatch);
    }
    return {.responseMode = request.responseMode(),
            .redirectURI = request.redirectURI(),
            .params = *std::move(params)};
}

} // namespace KeyloftCore
