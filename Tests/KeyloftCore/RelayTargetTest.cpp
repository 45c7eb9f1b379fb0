#include "KeyloftCore/RelayTarget.h"

#include "Platform/Foundation/Base64.h"
#include "Platform/Foundation/JSON.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace {

using KeyloftCore::RelayTarget;
using Platform::JSONValue;
using Platform::URL;

constexpr std::string_view nonce = "ABCDEFGHIJKLMNOPQRST-_";
constexpr std::string_view redirect = "https://client.example/cb";

RelayTarget target(std::optional<std::string> state = std::nullopt) {
    return {.redirectURI = URL::fromString(redirect).value(),
            .state = std::move(state),
            .nonce = std::string(nonce)};
}

std::string fragmentOf(std::string_view json) { return "keyloft=" + Platform::base64Encoded(json); }

std::optional<RelayTarget> read(std::string_view json) { return RelayTarget::fromFragment(fragmentOf(json)); }

std::optional<RelayTarget> read(const JSONValue::Object& members) {
    return read(Platform::compactJSON(members, Platform::JSONSlashes::plain));
}

JSONValue::Object members() { return {{"n", nonce}, {"r", redirect}}; }

JSONValue::Object membersWith(const std::string& name, const JSONValue& value) {
    auto object = members();
    object[name] = value;
    return object;
}

std::string decoded(const std::string& fragment) {
    auto text = fragment.substr(fragment.find('=') + 1);
    std::ranges::replace(text, '-', '+');
    std::ranges::replace(text, '_', '/');
    text.append((4 - text.size() % 4) % 4, '=');
    return Platform::base64Decoded(text).value();
}

TEST(RelayTarget, hasItsConstants) {
    EXPECT_EQ(RelayTarget::fragmentKey, "keyloft");
    EXPECT_EQ(RelayTarget::nonceLength, 22U);
    EXPECT_EQ(RelayTarget::maxStateLength, 2048U);
}

TEST(RelayTarget, writesSortedCompactJSONWithPlainSlashes) {
    EXPECT_EQ(decoded(target().fragment()),
              R"({"n":"ABCDEFGHIJKLMNOPQRST-_","r":"https://client.example/cb"})");
    EXPECT_EQ(decoded(target("").fragment()),
              R"({"n":"ABCDEFGHIJKLMNOPQRST-_","r":"https://client.example/cb","s":""})");
}

TEST(RelayTarget, writesURLSafeBase64WithoutPadding) {
    for (std::size_t length = 0; length < 6; ++length) {
        // The encoded target contains both characters that differ between the standard and the URL-safe
        // base64 alphabets.
        const auto fragment = target(std::string(length, 'x') + "\u07FF\u083E?>~\u07FF").fragment();
        EXPECT_TRUE(fragment.starts_with("keyloft="));
        EXPECT_EQ(fragment.find_first_of("+/=", 8), std::string::npos) << fragment;
    }
}

TEST(RelayTarget, whatIsWrittenIsReadBack) {
    for (const auto& state : {std::optional<std::string>(), std::optional<std::string>(""),
                              std::optional<std::string>("a \"state\"\n with ünïcode 日本 \\ /")}) {
        EXPECT_EQ(RelayTarget::fromFragment(target(state).fragment()), target(state));
    }
}

TEST(RelayTarget, writesWhatItWouldNotRead) {
    auto odd = target(std::string(2049, 's'));
    EXPECT_EQ(RelayTarget::fromFragment(odd.fragment()), std::nullopt);
    EXPECT_NE(decoded(odd.fragment()).find(std::string(2049, 's')), std::string::npos);
    odd = target();
    odd.nonce = "short";
    EXPECT_EQ(RelayTarget::fromFragment(odd.fragment()), std::nullopt);
    EXPECT_NE(decoded(odd.fragment()).find("short"), std::string::npos);
}

TEST(RelayTarget, needsItsKeyInFront) {
    const auto body = target().fragment().substr(8);
    EXPECT_TRUE(RelayTarget::fromFragment("keyloft=" + body));
    for (const auto* key :
         {"Keyloft=", "KEYLOFT=", "keyloft", "keyloft:", " keyloft=", "#keyloft=", "x=1&keyloft=", ""}) {
        EXPECT_EQ(RelayTarget::fromFragment(key + body), std::nullopt) << key;
    }
    EXPECT_EQ(RelayTarget::fromFragment("keyloft="), std::nullopt);
    EXPECT_EQ(RelayTarget::fromFragment("keyloft==" + body), std::nullopt);
}

TEST(RelayTarget, readsKeptPaddingAndTheOrdinaryAlphabet) {
    // The lengths of these states differ, so that base64 requires zero, one and two padding characters.
    for (const auto* state : {"\u07FF\u083E", "\u07FF\u083Ex", "\u07FF\u083Exy"}) {
        const auto read = RelayTarget::fromFragment(fragmentOf(decoded(target(state).fragment())));
        EXPECT_EQ(read, target(state));
    }
}

TEST(RelayTarget, refusesWhatIsNoBase64) {
    const auto fragment = target().fragment();
    for (const auto* addition : {"!", " ", "\n", "%3D", "==="}) {
        EXPECT_EQ(RelayTarget::fromFragment(fragment + addition), std::nullopt) << addition;
    }
}

TEST(RelayTarget, refusesWhatIsNoJSONObject) {
    for (const auto* json :
         {"", "x", "[]", "null", "\"text\"", "1", "{", R"([{"n":"ABCDEFGHIJKLMNOPQRST-_"}])"}) {
        EXPECT_EQ(read(json), std::nullopt) << json;
    }
}

TEST(RelayTarget, needsARedirectURI) {
    auto object = members();
    object.erase("r");
    EXPECT_EQ(read(object), std::nullopt);
    object["R"] = redirect;
    EXPECT_EQ(read(object), std::nullopt);
    for (const auto& value : {JSONValue(1), JSONValue(nullptr), JSONValue(JSONValue::Array{redirect}),
                              JSONValue(""), JSONValue("https://client.example:port/")}) {
        EXPECT_EQ(read(membersWith("r", value)), std::nullopt);
    }
}

TEST(RelayTarget, theRedirectURIMustBeHTTPSAndElsewhere) {
    for (const auto* text :
         {"http://client.example/", "HTTPS://client.example/", "//client.example/", "/cb", "https:/cb",
          "https:cb", "https:///cb", "https://%FF/cb", "https://appleid.apple.com/",
          "https://appleid.apple.com:8443/x", "https://%61ppleid.apple.com/"}) {
        EXPECT_EQ(read(membersWith("r", text)), std::nullopt) << text;
    }
    for (const auto* text :
         {"https://client.example", "https://AppleID.apple.com/", "https://a.appleid.apple.com/",
          "https://client.example:8443/cb?x=1#y", "https://client.example/@", "https://:443/cb"}) {
        EXPECT_TRUE(read(membersWith("r", text))) << text;
    }
}

TEST(RelayTarget, theRedirectURIMustBeWithoutUserInformation) {
    for (const auto* userInformation :
         {"@", "u@", "%FF@", ":@", ":p@", ":%FF@", "u:p@", "u:@", "%FF:%FF@", "a@b@"}) {
        const auto text = "https://" + std::string(userInformation) + "client.example/";
        EXPECT_EQ(read(membersWith("r", text)), std::nullopt) << text;
    }
}

TEST(RelayTarget, needsANonceOfItsForm) {
    auto object = members();
    object.erase("n");
    EXPECT_EQ(read(object), std::nullopt);
    for (const auto& value :
         {JSONValue(1), JSONValue(nullptr), JSONValue(JSONValue::Array{nonce}), JSONValue(""),
          JSONValue("ABCDEFGHIJKLMNOPQRST-"), JSONValue("ABCDEFGHIJKLMNOPQRST-_x"),
          JSONValue("ABCDEFGHIJKLMNOPQRST+_"), JSONValue("ABCDEFGHIJKLMNOPQRST-/"),
          JSONValue("ABCDEFGHIJKLMNOPQRS=-_"), JSONValue("ÄBCDEFGHIJKLMNOPQRST-_")}) {
        EXPECT_EQ(read(membersWith("n", value)), std::nullopt);
    }
}

TEST(RelayTarget, aStateIsOptionalButMustBeAStringWithinTheLimit) {
    EXPECT_EQ(read(members())->state, std::nullopt);
    EXPECT_EQ(read(membersWith("s", ""))->state, "");
    EXPECT_TRUE(read(membersWith("s", std::string(2048, 's'))));
    EXPECT_EQ(read(membersWith("s", std::string(2049, 's'))), std::nullopt);
    for (const auto& value : {JSONValue(7), JSONValue(nullptr), JSONValue(true),
                              JSONValue(JSONValue::Array{}), JSONValue(JSONValue::Object{})}) {
        EXPECT_EQ(read(membersWith("s", value)), std::nullopt);
    }
}

TEST(RelayTarget, theStatesLimitCountsCharacters) {
    std::string long2048;
    for (int count = 0; count < 2048; ++count) {
        long2048 += "e\u0301";
    }
    EXPECT_TRUE(read(membersWith("s", long2048)));
    EXPECT_EQ(read(membersWith("s", long2048 + "x")), std::nullopt);
}

TEST(RelayTarget, ignoresOtherMembers) {
    auto object = members();
    object["N"] = 1;
    object["x"] = JSONValue::Array{1, 2};
    EXPECT_EQ(read(object), target());
}

TEST(RelayTarget, equalityIsOfAllFields) {
    EXPECT_EQ(target("s"), target("s"));
    EXPECT_NE(target("s"), target(""));
    EXPECT_NE(target(""), target());
    auto other = target();
    other.nonce.back() = 'x';
    EXPECT_NE(other, target());
    other = target();
    other.redirectURI = URL::fromString("https://client.example/CB").value();
    EXPECT_NE(other, target());
}

TEST(RelayTarget, recognisesANonce) {
    EXPECT_TRUE(RelayTarget::isNonce(nonce));
    EXPECT_TRUE(RelayTarget::isNonce("0123456789abcdefghijkl"));
    EXPECT_TRUE(RelayTarget::isNonce("wxyzWXYZ________------"));
    for (const auto* text :
         {"", "ABCDEFGHIJKLMNOPQRST-", "ABCDEFGHIJKLMNOPQRST-_x", "ABCDEFGHIJKLMNOPQRST-+",
          "ABCDEFGHIJKLMNOPQRST-/", "ABCDEFGHIJKLMNOPQRST-=", "ABCDEFGHIJKLMNOPQRST- ",
          "ABCDEFGHIJKLMNOPQRST-@", "ABCDEFGHIJKLMNOPQRST-[", "ABCDEFGHIJKLMNOPQRST-`",
          "ABCDEFGHIJKLMNOPQRST-{", "ABCDEFGHIJKLMNOPQRST-:", "ÄÖÜÄÖÜÄÖÜÄ", "ÄBCDEFGHIJKLMNOPQRST-_"}) {
        EXPECT_FALSE(RelayTarget::isNonce(text)) << text;
    }
    EXPECT_FALSE(RelayTarget::isNonce(std::string_view("ABCDEFGHIJKLMNOPQRST-\0", 22)));
}

TEST(RelayTarget, mintsNoncesThatDiffer) {
    std::set<std::string> minted;
    for (int count = 0; count < 1000; ++count) {
        const auto fresh = RelayTarget::mintNonce();
        EXPECT_TRUE(RelayTarget::isNonce(fresh)) << fresh;
        minted.insert(fresh);
    }
    EXPECT_EQ(minted.size(), 1000U);
}

TEST(RelayTarget, everyBitOfANonceVaries) {
    std::string ored(16, '\0');
    std::string anded(16, '\xFF');
    for (int count = 0; count < 200; ++count) {
        auto text = RelayTarget::mintNonce();
        std::ranges::replace(text, '-', '+');
        std::ranges::replace(text, '_', '/');
        const auto bytes = Platform::base64Decoded(text + "==").value();
        ASSERT_EQ(bytes.size(), 16U);
        for (std::size_t index = 0; index < 16; ++index) {
            ored[index] = static_cast<char>(ored[index] | bytes[index]);
            anded[index] = static_cast<char>(anded[index] & bytes[index]);
        }
    }
    EXPECT_EQ(ored, std::string(16, '\xFF'));
    EXPECT_EQ(anded, std::string(16, '\0'));
}

} // namespace
