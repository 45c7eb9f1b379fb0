#include "Tests/Support/Vectors.h"

#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/HostError.h"
#include "KeyloftCore/Log.h"
#include "KeyloftCore/RelayProtocol.h"
#include "KeyloftCore/RelayResult.h"
#include "KeyloftCore/RelayTarget.h"
#include "Platform/Foundation/Base64.h"
#include "Platform/Foundation/JSON.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using KeyloftCore::AuthorizeRequest;
using KeyloftCore::RelayProtocol;
using KeyloftCore::RelayResult;
using KeyloftCore::RelayTarget;
using nlohmann::json;
using Platform::URL;
using TestSupport::expectVectors;
using TestSupport::orNull;

TEST(AuthorizeRequestVectors, hold) {
    expectVectors("authorize", [](const json& in) -> json {
        try {
            const AuthorizeRequest request(URL::fromString(in["url"].get<std::string>()).value(),
                                           in["nonce"].get<std::string>());
            auto matches = json::array();
            for (const auto& candidate : in["candidates"]) {
                const auto url = URL::fromString(candidate.get<std::string>());
                matches.push_back(url ? json(request.matchesRedirect(*url)) : json());
            }
            return {
                {"redirectURI", request.redirectURI().absoluteString()},
                {"responseMode", rawValue(request.responseMode())},
                {"state", orNull(request.state())},
                {"fragment", request.relayTarget().fragment()},
                {"safariRelayURL", request.safariRelayURL().absoluteString()},
                {"matches", matches},
            };
        } catch (const KeyloftCore::HostError& error) {
            EXPECT_EQ(error.code(), "bad_request");
            return {{"error", error.message()}};
        }
    });
}

TEST(RelayTargetVectors, hold) {
    expectVectors("target", [](const json& in) -> json {
        const auto target = RelayTarget::fromFragment(in.get<std::string>());
        if (!target) {
            return {};
        }
        EXPECT_EQ(RelayTarget::fromFragment(target->fragment()), target);
        return {
            {"redirectURI", target->redirectURI.absoluteString()},
            {"state", orNull(target->state)},
            {"nonce", target->nonce},
            {"fragment", target->fragment()},
        };
    });
}

TEST(RelayProtocolVectors, hold) {
    expectVectors("reply", [](const json& in) -> json {
        const AuthorizeRequest request(URL::fromString(in["url"].get<std::string>()).value(),
                                       in["nonce"].get<std::string>());
        const auto payload = Platform::base64Decoded(in["payload"].get<std::string>()).value();
        const auto reply = RelayProtocol::reply(payload, request);
        json out = {
            {"reply", json::parse(Platform::compactJSON(reply.json(), Platform::JSONSlashes::plain))}};
        try {
            out["params"] = RelayResult::parse(payload, request).params;
        } catch (const RelayResult::ParseError& error) {
            out["parseError"] = error.what();
        }
        return out;
    });
}

TEST(RedactVectors, hold) {
    expectVectors("redact",
                  [](const json& in) -> json { return KeyloftCore::redact(in.get<std::string>()); });
}

} // namespace
