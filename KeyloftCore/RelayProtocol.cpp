#include "KeyloftCore/RelayProtocol.h"

#include "KeyloftCore/RelayResult.h"

namespace KeyloftCore {

namespace {

bool confirms(const Platform::JSONValue& message, const AuthorizeRequest& request) {
    const auto* redirect = message.stringMember("redirectUri");
    const auto url = redirect == nullptr ? std::nullopt : Platform::URL::fromString(*redirect);
    if (!url || !request.matchesRedirect(*url)) {
        return false;
    }
    const auto* state = message.stringMember("state");
    if ((state == nullptr ? std::nullopt : std::optional(*state)) != request.state()) {
        return false;
    }
    return request.matchesNonce(message.member("nonce"));
}

} // namespace

RelayProtocol::Reply RelayProtocol::reply(std::string_view data, const AuthorizeRequest& request) {
    const auto message = Platform::JSONValue::parse(data);
    if (!message) {
        return Reply::error("frame is not a JSON object with a type");
    }
    const auto* type = message->stringMember("type");
    if (type == nullptr) {
        return Reply::error("frame is not a JSON object with a type");
    }
    if (*type == "confirm") {
        return Reply::confirm(confirms(*message, request));
    }
    if (*type == "result") {
        try {
            return Reply::ack(RelayResult::parseMessage(*message, request));
        } catch (const RelayResult::ParseError&) {
            return Reply::ack(std::nullopt);
        }
    }
    return Reply::error("unknown message type");
}

Platform::JSONValue::Object RelayProtocol::Reply::json() const {
    if (const auto* answer = confirm()) {
        return {{"type", "confirm"}, {"ok", answer->ok}};
    }
    if (const auto* answer = ack()) {
        return {{"type", "ack"}, {"relayed", answer->result.has_value()}};
    }
    return {{"type", "error"}, {"code", "bad_request"}, {"message", error()->message}};
}

} // namespace KeyloftCore
