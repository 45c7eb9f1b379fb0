#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/RelayProtocol.h"
#include "KeyloftCore/RelayResult.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URL.h"
#include "Tests/Support/Present.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using KeyloftCore::AuthorizeRequest;
using KeyloftCore::AuthResult;
using KeyloftCore::RelayProtocol;
using KeyloftCore::RelayResult;

void require(bool condition, std::string_view promise) {
    if (!condition) {
        Platform::fatalError(promise);
    }
}

AuthorizeRequest request(std::string_view stateItem) {
    const auto text = "https://appleid.apple.com/auth/authorize?redirect_uri=https://client.example" +
                      std::string(stateItem);
    return {TestSupport::present(Platform::URL::fromString(text)), "ABCDEFGHIJKLMNOPQRST-_"};
}

std::optional<AuthResult> parsed(std::string_view data, const AuthorizeRequest& pending) {
    try {
        return RelayResult::parse(data, pending);
    } catch (const RelayResult::ParseError&) {
        return std::nullopt;
    }
}

void check(std::string_view data, const AuthorizeRequest& pending) {
    const auto reply = RelayProtocol::reply(data, pending);
    const auto text = Platform::compactJSON(reply.json(), Platform::JSONSlashes::plain);
    const auto again = Platform::JSONValue::parse(text);
    require(again && *again == Platform::JSONValue(reply.json()), "a reply is JSON");

    const bool knowsTheNonce = data.find(R"(ABCDEFGHIJKLMNOPQRST-_)") != std::string_view::npos ||
                               data.find('\\') != std::string_view::npos;
    const auto result = parsed(data, pending);
    if (const auto* ack = reply.ack()) {
        require(ack->result == result, "an ack contains the parsed result");
    } else {
        require(!result, "only an ack answers a result");
    }
    if (const auto* confirm = reply.confirm(); confirm != nullptr && confirm->ok) {
        require(knowsTheNonce, "nothing is confirmed without the nonce");
    }
    if (result) {
        require(knowsTheNonce, "nothing is accepted without the nonce");
        require(result->redirectURI == pending.redirectURI(), "a result is the request's");
        const auto state = result->params.find("state");
        const bool isStateless = state == result->params.end() || state->second.empty();
        require(isStateless ? !pending.state() : pending.state() == state->second,
                "a result has the request's state");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::array requests = {request(""), request("&state="), request("&state=xyz123")};
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const auto& pending : requests) {
        check(text, pending);
    }
    return 0;
}
