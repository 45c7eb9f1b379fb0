#include "KeyloftCore/RelayProtocol.h"

#include "KeyloftCore/HostError.h"
#include "KeyloftCore/RelayResult.h"
#include "Platform/Foundation/JSON.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace {

using KeyloftCore::AuthorizeRequest;
using KeyloftCore::AuthResult;
using KeyloftCore::HostError;
using KeyloftCore::RelayProtocol;
using KeyloftCore::RelayResult;
using KeyloftCore::ResponseMode;
using Platform::JSONValue;
using Platform::URL;
using Reply = RelayProtocol::Reply;
using Case = RelayResult::ParseError::Case;

constexpr std::string_view nonce = "ABCDEFGHIJKLMNOPQRST-_";
constexpr std::string_view redirect = "https://client.example/cb";

AuthorizeRequest request(std::string_view stateItem = "&state=xyz") {
    const auto text = "https://appleid.apple.com/auth/authorize?response_mode=fragment&redirect_uri=" +
                      std::string(redirect) + std::string(stateItem);
    return {URL::fromString(text).value(), std::string(nonce)};
}

const AuthorizeRequest withState = request();
const AuthorizeRequest withEmptyState = request("&state=");
const AuthorizeRequest withoutState = request("");

std::string text(const JSONValue::Object& message) {
    return Platform::compactJSON(message, Platform::JSONSlashes::plain);
}

JSONValue::Object confirmMessage() {
    return {{"type", "confirm"}, {"redirectUri", redirect}, {"state", "xyz"}, {"nonce", nonce}};
}

JSONValue::Object resultMessage() {
    return {{"type", "result"},
            {"redirectUri", std::string(redirect) + "?code=c#f"},
            {"params", JSONValue::Object{{"code", "c"}, {"state", "xyz"}}},
            {"nonce", nonce}};
}

JSONValue::Object with(JSONValue::Object message, const std::string& name, const JSONValue& value) {
    message[name] = value;
    return message;
}

JSONValue::Object without(JSONValue::Object message, const std::string& name) {
    message.erase(name);
    return message;
}

Reply reply(const JSONValue::Object& message, const AuthorizeRequest& pending = withState) {
    return RelayProtocol::reply(text(message), pending);
}

std::optional<Case> parseError(std::string_view data, const AuthorizeRequest& pending = withState) {
    try {
        RelayResult::parse(data, pending);
    } catch (const RelayResult::ParseError& error) {
        return error.kind();
    }
    return std::nullopt;
}

std::optional<Case> parseError(const JSONValue::Object& message,
                               const AuthorizeRequest& pending = withState) {
    return parseError(text(message), pending);
}

const auto notAnObject = Reply::error("frame is not a JSON object with a type");
const auto unknownType = Reply::error("unknown message type");

TEST(RelayProtocol, answersWhatIsNoMessageWithAnError) {
    for (const auto* data :
         {"", " ", "x", "{", "[]", "null", "1", "\"confirm\"", "{}", R"([{"type":"confirm"}])",
          R"({"type":1})", R"({"type":null})", R"({"type":["confirm"]})", R"({"Type":"confirm"})",
          R"({"type":"confirm"} x)", "\xFF"}) {
        EXPECT_EQ(RelayProtocol::reply(data, withState), notAnObject) << data;
    }
}

TEST(RelayProtocol, answersAnUnknownTypeWithAnError) {
    for (const auto* type : {"Confirm", "RESULT", "", " confirm", "confirm ", "ack"}) {
        EXPECT_EQ(reply(with(confirmMessage(), "type", type)), unknownType) << type;
    }
}

TEST(RelayProtocol, confirmsATargetThatIsTheRequests) {
    EXPECT_EQ(reply(confirmMessage()), Reply::confirm(true));
    EXPECT_EQ(reply(with(confirmMessage(), "extra", JSONValue::Array{1})), Reply::confirm(true));
    EXPECT_EQ(reply(with(confirmMessage(), "redirectUri", std::string(redirect) + "?q#f")),
              Reply::confirm(true));
}

TEST(RelayProtocol, theLastOfSeveralEqualNamesCounts) {
    const auto twice = [](const JSONValue::Object& message, std::string_view member) {
        auto data = text(message);
        data.insert(data.size() - 1, "," + std::string(member));
        return data;
    };
    const auto wrongNonce = with(confirmMessage(), "nonce", "another");
    EXPECT_EQ(RelayProtocol::reply(twice(wrongNonce, R"("nonce":"ABCDEFGHIJKLMNOPQRST-_")"), withState),
              Reply::confirm(true));
    EXPECT_EQ(RelayProtocol::reply(twice(confirmMessage(), R"("nonce":"another")"), withState),
              Reply::confirm(false));
    EXPECT_EQ(RelayProtocol::reply(twice(confirmMessage(), R"("type":"other")"), withState), unknownType);
    const auto result = RelayResult::parse(
        twice(resultMessage(), R"("params":{"code":"x","state":"other","state":"xyz","code":"y"})"),
        withState);
    EXPECT_EQ(result.params, (std::map<std::string, std::string>{{"code", "y"}, {"state", "xyz"}}));
}

TEST(RelayProtocol, deniesAnotherRedirectURI) {
    EXPECT_EQ(reply(without(confirmMessage(), "redirectUri")), Reply::confirm(false));
    for (const auto& value :
         {JSONValue(1), JSONValue(nullptr), JSONValue(JSONValue::Array{redirect}), JSONValue(""),
          JSONValue("https://client.example/other"), JSONValue("http://client.example/cb"),
          JSONValue("https://client.example:port/cb")}) {
        EXPECT_EQ(reply(with(confirmMessage(), "redirectUri", value)), Reply::confirm(false));
    }
    auto renamed = without(confirmMessage(), "redirectUri");
    renamed["redirect_uri"] = redirect;
    EXPECT_EQ(reply(renamed), Reply::confirm(false));
}

TEST(RelayProtocol, deniesAnotherState) {
    EXPECT_EQ(reply(without(confirmMessage(), "state")), Reply::confirm(false));
    for (const auto& value :
         {JSONValue(""), JSONValue("XYZ"), JSONValue("xyz "), JSONValue(7), JSONValue(nullptr)}) {
        EXPECT_EQ(reply(with(confirmMessage(), "state", value)), Reply::confirm(false));
    }
}

TEST(RelayProtocol, anEmptyStateIsAStateInAConfirm) {
    EXPECT_EQ(reply(with(confirmMessage(), "state", ""), withEmptyState), Reply::confirm(true));
    EXPECT_EQ(reply(without(confirmMessage(), "state"), withEmptyState), Reply::confirm(false));
    EXPECT_EQ(reply(with(confirmMessage(), "state", ""), withoutState), Reply::confirm(false));
    EXPECT_EQ(reply(without(confirmMessage(), "state"), withoutState), Reply::confirm(true));
}

TEST(RelayProtocol, aStateThatIsNoStringCountsAsAbsentInAConfirm) {
    for (const auto& value : {JSONValue(7), JSONValue(nullptr), JSONValue(JSONValue::Object{})}) {
        EXPECT_EQ(reply(with(confirmMessage(), "state", value), withoutState), Reply::confirm(true));
    }
}

TEST(RelayProtocol, statesAreComparedByTheirBytes) {
    const auto composed = request("&state=%C3%A9");
    EXPECT_EQ(reply(with(confirmMessage(), "state", "\u00E9"), composed), Reply::confirm(true));
    EXPECT_EQ(reply(with(confirmMessage(), "state", "e\u0301"), composed), Reply::confirm(false));
}

TEST(RelayProtocol, deniesAnotherNonce) {
    EXPECT_EQ(reply(without(confirmMessage(), "nonce")), Reply::confirm(false));
    for (const auto& value : {JSONValue(1), JSONValue(nullptr), JSONValue(JSONValue::Array{nonce}),
                              JSONValue(""), JSONValue("ABCDEFGHIJKLMNOPQRST-x")}) {
        EXPECT_EQ(reply(with(confirmMessage(), "nonce", value)), Reply::confirm(false));
    }
}

TEST(RelayProtocol, acknowledgesAResultWithTheRequestsModeAndURI) {
    const AuthResult expected{.responseMode = ResponseMode::fragment,
                              .redirectURI = URL::fromString(redirect).value(),
                              .params = {{"code", "c"}, {"state", "xyz"}}};
    EXPECT_EQ(reply(resultMessage()), Reply::ack(expected));
    EXPECT_EQ(RelayResult::parse(text(resultMessage()), withState), expected);
}

TEST(RelayProtocol, aRefusedResultIsAcknowledgedWithoutAReason) {
    for (const auto& message :
         {with(resultMessage(), "params", JSONValue::Object{{"code", 1}}),
          with(resultMessage(), "nonce", "other"),
          with(resultMessage(), "redirectUri", "https://evil.test/cb"), without(resultMessage(), "params")}) {
        EXPECT_EQ(reply(message), Reply::ack(std::nullopt));
    }
}

TEST(RelayProtocol, repliesHaveTheirJSON) {
    const AuthResult result{.responseMode = ResponseMode::query,
                            .redirectURI = URL::fromString(redirect).value(),
                            .params = {{"code", "secret"}}};
    EXPECT_EQ(text(Reply::confirm(true).json()), R"({"ok":true,"type":"confirm"})");
    EXPECT_EQ(text(Reply::confirm(false).json()), R"({"ok":false,"type":"confirm"})");
    EXPECT_EQ(text(Reply::ack(result).json()), R"({"relayed":true,"type":"ack"})");
    EXPECT_EQ(text(Reply::ack(std::nullopt).json()), R"({"relayed":false,"type":"ack"})");
    EXPECT_EQ(text(unknownType.json()),
              R"({"code":"bad_request","message":"unknown message type","type":"error"})");
    EXPECT_EQ(text(notAnObject.json()),
              R"({"code":"bad_request","message":"frame is not a JSON object with a type","type":"error"})");
}

TEST(RelayProtocol, repliesAreEqualInCaseAndPayload) {
    const AuthResult result{.responseMode = ResponseMode::query,
                            .redirectURI = URL::fromString(redirect).value(),
                            .params = {{"code", "c"}}};
    auto other = result;
    other.params["code"] = "d";
    const std::vector<Reply> all = {Reply::confirm(true),     Reply::confirm(false), Reply::ack(result),
                                    Reply::ack(std::nullopt), Reply::ack(other),     Reply::error("a"),
                                    Reply::error("b")};
    for (std::size_t left = 0; left < all.size(); ++left) {
        for (std::size_t right = 0; right < all.size(); ++right) {
            EXPECT_EQ(all[left] == all[right], left == right) << left << ", " << right;
        }
    }
}

TEST(RelayResult, refusesWhatIsNoResult) {
    for (const auto* data : {"", "x", "[]", "{}", R"({"type":1})", R"({"type":"Result"})"}) {
        EXPECT_EQ(parseError(data), Case::notAResult) << data;
    }
    EXPECT_EQ(parseError(confirmMessage()), Case::notAResult);
    EXPECT_EQ(parseError(without(resultMessage(), "type")), Case::notAResult);
}

TEST(RelayResult, refusesParamsThatAreNotAllStrings) {
    EXPECT_EQ(parseError(without(resultMessage(), "params")), Case::badParams);
    for (const auto& value :
         {JSONValue(1), JSONValue(nullptr), JSONValue("code=1"),
          JSONValue(JSONValue::Array{JSONValue::Array{"code", "1"}}),
          JSONValue(JSONValue::Object{{"state", "xyz"}, {"code", 1}}),
          JSONValue(JSONValue::Object{{"state", "xyz"}, {"code", nullptr}}),
          JSONValue(JSONValue::Object{{"state", "xyz"}, {"user", JSONValue::Object{}}})}) {
        EXPECT_EQ(parseError(with(resultMessage(), "params", value)), Case::badParams);
    }
}

TEST(RelayResult, emptyParamsAreParams) {
    EXPECT_EQ(parseError(with(resultMessage(), "params", JSONValue::Object{}), withoutState), std::nullopt);
}

TEST(RelayResult, refusesAnotherRedirectURI) {
    EXPECT_EQ(parseError(without(resultMessage(), "redirectUri")), Case::redirectMismatch);
    for (const auto& value :
         {JSONValue(1), JSONValue(nullptr), JSONValue(""), JSONValue("https://client.example/"),
          JSONValue("https://client.example:port/cb")}) {
        EXPECT_EQ(parseError(with(resultMessage(), "redirectUri", value)), Case::redirectMismatch);
    }
}

TEST(RelayResult, theStateIsInTheParamsAndAnEmptyOneCountsAsNone) {
    const auto params = [](std::optional<std::string> state) {
        JSONValue::Object object{{"code", "c"}};
        if (state) {
            object["state"] = *state;
        }
        return with(resultMessage(), "params", std::move(object));
    };
    EXPECT_EQ(parseError(params("xyz")), std::nullopt);
    EXPECT_EQ(parseError(params("XYZ")), Case::stateMismatch);
    EXPECT_EQ(parseError(params("")), Case::stateMismatch);
    EXPECT_EQ(parseError(params(std::nullopt)), Case::stateMismatch);
    EXPECT_EQ(parseError(params("")), Case::stateMismatch);
    EXPECT_EQ(parseError(params("xyz"), withoutState), Case::stateMismatch);
    EXPECT_EQ(parseError(params(""), withoutState), std::nullopt);
    EXPECT_EQ(parseError(params(std::nullopt), withoutState), std::nullopt);
    EXPECT_EQ(parseError(params(""), withEmptyState), Case::stateMismatch);
    EXPECT_EQ(parseError(params(std::nullopt), withEmptyState), Case::stateMismatch);
    EXPECT_EQ(parseError(with(params(std::nullopt), "state", "xyz")), Case::stateMismatch);
}

TEST(RelayResult, theNonceIsTheMessagesAndNotTheParams) {
    EXPECT_EQ(parseError(without(resultMessage(), "nonce")), Case::nonceMismatch);
    EXPECT_EQ(parseError(with(resultMessage(), "nonce", 1)), Case::nonceMismatch);
    EXPECT_EQ(parseError(with(resultMessage(), "nonce", "other")), Case::nonceMismatch);
    const auto inParams = with(without(resultMessage(), "nonce"), "params",
                               JSONValue::Object{{"state", "xyz"}, {"nonce", std::string(nonce)}});
    EXPECT_EQ(parseError(inParams), Case::nonceMismatch);
}

TEST(RelayResult, theFirstFailingCheckTells) {
    struct Fault {
        Case error;
        std::string member;
        JSONValue value;
    };
    const std::vector<Fault> faults = {
        {.error = Case::notAResult, .member = "type", .value = "other"},
        {.error = Case::badParams, .member = "params", .value = 1},
        {.error = Case::redirectMismatch, .member = "redirectUri", .value = "https://evil.test/"},
        {.error = Case::stateMismatch, .member = "params", .value = JSONValue::Object{{"state", "other"}}},
        {.error = Case::nonceMismatch, .member = "nonce", .value = "other"},
    };
    for (std::size_t first = 0; first < faults.size(); ++first) {
        for (std::size_t second = first; second < faults.size(); ++second) {
            if (first != second && faults[first].member == faults[second].member) {
                continue; // One member cannot have two faults.
            }
            auto message = with(resultMessage(), faults[second].member, faults[second].value);
            message[faults[first].member] = faults[first].value;
            EXPECT_EQ(parseError(message), faults[first].error) << first << ", " << second;
        }
    }
}

TEST(RelayProtocol, confirmChecksOneAfterTheOther) {
    // A message with two faults is denied like a message with one fault. No check overrides the failure of an
    // earlier check.
    const std::vector<std::pair<std::string, JSONValue>> faults = {
        {"redirectUri", "https://evil.test/"}, {"state", "other"}, {"nonce", "other"}};
    for (const auto& first : faults) {
        for (const auto& second : faults) {
            auto message = with(confirmMessage(), first.first, first.second);
            message[second.first] = second.second;
            EXPECT_EQ(reply(message), Reply::confirm(false)) << first.first << ", " << second.first;
        }
    }
}

TEST(RelayResult, errorsHashAndNameTheirCase) {
    const std::vector<Case> cases = {Case::notAResult, Case::badParams, Case::redirectMismatch,
                                     Case::stateMismatch, Case::nonceMismatch};
    std::unordered_set<std::string> names;
    std::unordered_set<std::size_t> hashes;
    for (const auto kind : cases) {
        const RelayResult::ParseError error(kind);
        names.insert(error.what());
        hashes.insert(std::hash<RelayResult::ParseError>()(error));
        EXPECT_EQ(error, RelayResult::ParseError(kind));
    }
    EXPECT_EQ(names, (std::unordered_set<std::string>{"notAResult", "badParams", "redirectMismatch",
                                                      "stateMismatch", "nonceMismatch"}));
    EXPECT_EQ(hashes.size(), cases.size());
}

TEST(HostError, hasItsCodesAndMessages) {
    const auto expect = [](const HostError& error, std::string_view code, std::string_view message) {
        EXPECT_EQ(error.code(), code);
        EXPECT_EQ(error.message(), message);
        EXPECT_EQ(std::string_view(error.what()), message);
    };
    expect(HostError::badRequest("a"), "bad_request", "a");
    expect(HostError::noNativeSheet("b"), "no_native_sheet", "b");
    expect(HostError::internalError("c"), "internal", "c");
    expect(HostError::cancelled(), "cancelled", "user cancelled");
    expect(HostError::timeout(), "timeout", "timed out");
}

TEST(AuthResult, isEqualInAllFields) {
    const AuthResult result{.responseMode = ResponseMode::query,
                            .redirectURI = URL::fromString(redirect).value(),
                            .params = {{"code", "c"}}};
    auto other = result;
    EXPECT_EQ(other, result);
    other.responseMode = ResponseMode::formPost;
    EXPECT_NE(other, result);
    other = result;
    other.redirectURI = URL::fromString("https://client.example/cb?").value();
    EXPECT_NE(other, result);
    other = result;
    other.params.clear();
    EXPECT_NE(other, result);
}

} // namespace
