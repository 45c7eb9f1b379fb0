#include "KeyloftCore/AuthorizeRequest.h"

#include "KeyloftCore/HostError.h"
#include "KeyloftCore/ResponseMode.h"
#include "Platform/Foundation/JSON.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace {

using KeyloftCore::AuthorizeRequest;
using KeyloftCore::HostError;
using KeyloftCore::ResponseMode;
using Platform::JSONValue;
using Platform::URL;

constexpr std::string_view nonce = "ABCDEFGHIJKLMNOPQRST-_";
constexpr std::string_view notAuthorize = "not an appleid.apple.com/auth/authorize URL";
constexpr std::string_view badRedirect = "redirect_uri missing or not https";
constexpr std::string_view authorize = "https://appleid.apple.com/auth/authorize";

URL url(std::string_view text) {
    const auto parsed = URL::fromString(text);
    EXPECT_TRUE(parsed) << text;
    return parsed.value();
}

AuthorizeRequest request(std::string_view text) { return {url(text), std::string(nonce)}; }

AuthorizeRequest requestWithQuery(std::string_view query) {
    return request(std::string(authorize) + "?" + std::string(query));
}

AuthorizeRequest requestTo(std::string_view redirectURI) {
    return requestWithQuery("redirect_uri=" + std::string(redirectURI));
}

std::string error(std::string_view text) {
    try {
        request(text);
    } catch (const HostError& thrown) {
        EXPECT_EQ(thrown.kind(), HostError::Case::badRequest);
        EXPECT_EQ(thrown.code(), "bad_request");
        return thrown.message();
    }
    return "";
}

constexpr std::string_view goodQuery = "?redirect_uri=https%3A%2F%2Fclient.example%2Fcb";

TEST(ResponseMode, hasExactlyFourTexts) {
    EXPECT_EQ(rawValue(ResponseMode::query), "query");
    EXPECT_EQ(rawValue(ResponseMode::fragment), "fragment");
    EXPECT_EQ(rawValue(ResponseMode::formPost), "form_post");
    EXPECT_EQ(rawValue(ResponseMode::webMessage), "web_message");
    for (const auto mode :
         {ResponseMode::query, ResponseMode::fragment, ResponseMode::formPost, ResponseMode::webMessage}) {
        EXPECT_EQ(KeyloftCore::responseModeFromRawValue(rawValue(mode)), mode);
    }
    for (const auto* text :
         {"", "Query", "FORM_POST", "form-post", "formPost", " query", "query ", "web_messages"}) {
        EXPECT_EQ(KeyloftCore::responseModeFromRawValue(text), std::nullopt) << text;
    }
}

TEST(AuthorizeRequest, takesAnAuthorizeURLWithARedirectURI) {
    const auto made = request(std::string(authorize) + std::string(goodQuery));
    EXPECT_EQ(made.url().absoluteString(), std::string(authorize) + std::string(goodQuery));
    EXPECT_EQ(made.redirectURI().absoluteString(), "https://client.example/cb");
    EXPECT_EQ(made.responseMode(), ResponseMode::query);
    EXPECT_EQ(made.state(), std::nullopt);
    EXPECT_EQ(made.relayNonce(), nonce);
}

TEST(AuthorizeRequest, refusesAnotherScheme) {
    EXPECT_EQ(error("http://appleid.apple.com/auth/authorize" + std::string(goodQuery)), notAuthorize);
    EXPECT_EQ(error("HTTPS://appleid.apple.com/auth/authorize" + std::string(goodQuery)), notAuthorize);
    EXPECT_EQ(error("//appleid.apple.com/auth/authorize" + std::string(goodQuery)), notAuthorize);
    EXPECT_EQ(error("/auth/authorize" + std::string(goodQuery)), notAuthorize);
}

TEST(AuthorizeRequest, refusesAnotherHost) {
    for (const auto* host : {"appleid.apple.com.evil.test", "AppleID.apple.com", "appleid.apple.com.",
                             "apple.com", "appleid.apple.com@evil.test", "127.0.0.1"}) {
        EXPECT_EQ(error("https://" + std::string(host) + "/auth/authorize" + std::string(goodQuery)),
                  notAuthorize)
            << host;
    }
    EXPECT_EQ(error("https:/auth/authorize" + std::string(goodQuery)), notAuthorize);
}

TEST(AuthorizeRequest, refusesAnotherPath) {
    for (const auto* path : {"/auth/authorize/", "/auth/Authorize", "/auth//authorize", "/auth/authorize2",
                             "/auth", "/", "", "/auth/./authorize"}) {
        EXPECT_EQ(error("https://appleid.apple.com" + std::string(path) + std::string(goodQuery)),
                  notAuthorize)
            << path;
    }
}

TEST(AuthorizeRequest, comparesThePathDecodedAndIgnoresPortAndCredentials) {
    EXPECT_EQ(error("https://appleid.apple.com/auth/%61uthorize" + std::string(goodQuery)), "");
    EXPECT_EQ(error("https://appleid.apple.com:8443/auth/authorize" + std::string(goodQuery)), "");
    EXPECT_EQ(error("https://u:p@appleid.apple.com/auth/authorize" + std::string(goodQuery)), "");
}

TEST(AuthorizeRequest, refusesAMissingRedirectURI) {
    EXPECT_EQ(error(authorize), badRedirect);
    EXPECT_EQ(error(std::string(authorize) + "?"), badRedirect);
    EXPECT_EQ(error(std::string(authorize) + "?redirect_uri"), badRedirect);
    EXPECT_EQ(error(std::string(authorize) + "?redirect_uri="), badRedirect);
    EXPECT_EQ(error(std::string(authorize) + "?redirect_uri=https://client.example/%FF"), badRedirect);
    EXPECT_EQ(error(std::string(authorize) + "?Redirect_uri=https://client.example"), badRedirect);
    EXPECT_EQ(error(std::string(authorize) + "#redirect_uri=https://client.example"), badRedirect);
}

TEST(AuthorizeRequest, refusesARedirectURIThatIsNotHTTPS) {
    for (const auto* redirect : {"http://client.example", "HTTPS://client.example", "//client.example",
                                 "client.example", "myapp:/cb", "https%3A//client.example:port", "%3A"}) {
        EXPECT_EQ(error(std::string(authorize) + "?redirect_uri=" + redirect), badRedirect) << redirect;
    }
}

TEST(AuthorizeRequest, checksTheURLBeforeTheRedirectURI) {
    // If both the authorize URL and the redirect URI are invalid, the error reports the authorize URL.
    EXPECT_EQ(error("http://appleid.apple.com/auth/authorize"), notAuthorize);
    EXPECT_EQ(error("https://client.example/auth/authorize?redirect_uri=http://client.example"),
              notAuthorize);
    EXPECT_EQ(error("https://appleid.apple.com/auth/authorize/?redirect_uri"), notAuthorize);
}

TEST(AuthorizeRequest, theFirstItemOfANameDecidesEvenWithoutAValue) {
    EXPECT_EQ(error(std::string(authorize) + "?redirect_uri&redirect_uri=https://client.example"),
              badRedirect);
    EXPECT_EQ(requestWithQuery("redirect_uri=https://a.example&redirect_uri=https://b.example").redirectURI(),
              url("https://a.example"));
    const auto made =
        requestWithQuery("redirect_uri=https://a.example&state&state=x&response_mode&response_mode="
                         "form_post");
    EXPECT_EQ(made.state(), std::nullopt);
    EXPECT_EQ(made.responseMode(), ResponseMode::query);
}

TEST(AuthorizeRequest, readsTheResponseMode) {
    const auto mode = [](std::string_view item) {
        return requestWithQuery("redirect_uri=https://client.example&" + std::string(item)).responseMode();
    };
    EXPECT_EQ(mode("response_mode=query"), ResponseMode::query);
    EXPECT_EQ(mode("response_mode=fragment"), ResponseMode::fragment);
    EXPECT_EQ(mode("response_mode=form_post"), ResponseMode::formPost);
    EXPECT_EQ(mode("response_mode=web_message"), ResponseMode::webMessage);
    for (const auto* item : {"", "response_mode", "response_mode=", "response_mode=FORM_POST",
                             "response_mode=other", "Response_mode=form_post"}) {
        EXPECT_EQ(mode(item), ResponseMode::query) << item;
    }
}

TEST(AuthorizeRequest, tellsAnEmptyStateFromAnAbsentOne) {
    const auto state = [](std::string_view item) {
        return requestWithQuery("redirect_uri=https://client.example&" + std::string(item)).state();
    };
    EXPECT_EQ(state("state="), "");
    EXPECT_EQ(state("state"), std::nullopt);
    EXPECT_EQ(state("State=x"), std::nullopt);
    EXPECT_EQ(state("state=%FF"), std::nullopt) << "not UTF-8";
    EXPECT_EQ(state("state=a%20b%2Bc+d"), "a b+c+d");
}

TEST(AuthorizeRequest, takesAnyNonce) {
    EXPECT_EQ(AuthorizeRequest(url(std::string(authorize) + std::string(goodQuery)), "").relayNonce(), "");
}

TEST(AuthorizeRequest, aCopyIsEqualInAllFields) {
    const auto made = requestWithQuery("redirect_uri=https://a.example&state=s&response_mode=fragment");
    const auto copy = made; // NOLINT: the copy is what is tested
    EXPECT_EQ(copy.url(), made.url());
    EXPECT_EQ(copy.relayTarget(), made.relayTarget());
    EXPECT_EQ(copy.responseMode(), made.responseMode());
}

TEST(AuthorizeRequest, effectivePortIsTheURLsOwnOrItsSchemes) {
    const auto port = [](std::string_view text) { return AuthorizeRequest::effectivePort(url(text)); };
    EXPECT_EQ(port("https://a.example"), 443);
    EXPECT_EQ(port("http://a.example"), 80);
    EXPECT_EQ(port("https://a.example:8443"), 8443);
    EXPECT_EQ(port("ftp://a.example:21"), 21);
    EXPECT_EQ(port("ftp://a.example"), std::nullopt);
    EXPECT_EQ(port("HTTPS://a.example"), std::nullopt);
    EXPECT_EQ(port("//a.example"), std::nullopt);
    EXPECT_EQ(port("https://a.example:"), 443);
}

TEST(AuthorizeRequest, matchesItsRedirectURIWithAnyQueryFragmentAndCredentials) {
    const auto made = requestTo("https://client.example/cb");
    for (const auto* text :
         {"https://client.example/cb", "https://client.example/cb?code=1&state=2",
          "https://client.example/cb#code=1", "https://client.example/cb?#", "https://u:p@client.example/cb",
          "https://client.example:443/cb", "https://client.example:/cb", "https://client.example/%63b"}) {
        EXPECT_TRUE(made.matchesRedirect(url(text))) << text;
    }
}

TEST(AuthorizeRequest, anyOtherSchemeHostPortOrPathDoesNotMatch) {
    const auto made = requestTo("https://client.example/cb");
    for (const auto* text :
         {"http://client.example/cb", "HTTPS://client.example/cb", "//client.example/cb",
          "https://Client.example/cb", "https://client.example./cb", "https://client.example.evil.test/cb",
          "https://evil.test@client.example.evil.test/cb", "https:/cb", "https://client.example:8443/cb",
          "https://client.example:80/cb", "https://client.example/cb/", "https://client.example/CB",
          "https://client.example/", "https://client.example", "https://client.example/cb/../cb",
          "https://client.example//cb", "/cb", "cb"}) {
        EXPECT_FALSE(made.matchesRedirect(url(text))) << text;
    }
}

TEST(AuthorizeRequest, anEmptyPathIsTheRoot) {
    EXPECT_TRUE(requestTo("https://client.example").matchesRedirect(url("https://client.example/?code=1")));
    EXPECT_TRUE(requestTo("https://client.example/").matchesRedirect(url("https://client.example?code=1")));
    EXPECT_FALSE(requestTo("https://client.example").matchesRedirect(url("https://client.example//")));
}

TEST(AuthorizeRequest, aHostThatIsNotUTF8MatchesNothing) {
    // `URL::host` returns `std::nullopt` both for an absent host and for a host that cannot be decoded. The
    // two must not match.
    for (const auto* text : {"https://%FF/cb", "https://%FE/cb", "https://u@%FF/cb", "https:/cb",
                             "https:///cb", "https:///%FF/cb"}) {
        EXPECT_FALSE(requestTo("https://%25FF/cb").matchesRedirect(url(text))) << text;
    }
    EXPECT_FALSE(requestTo("https:/cb").matchesRedirect(url("https://%FF/cb")));
    EXPECT_FALSE(requestTo("https:///cb").matchesRedirect(url("https://%FF/cb")));
    EXPECT_FALSE(requestTo("https://client.example/cb").matchesRedirect(url("https://%FF/cb")));
    EXPECT_TRUE(requestTo("https:/cb").matchesRedirect(url("https:///cb"))) << "both have no host";
}

TEST(AuthorizeRequest, hostsAreComparedDecodedAndInASCII) {
    EXPECT_TRUE(requestTo("https://client.example/cb").matchesRedirect(url("https://%63lient.example/cb")));
    EXPECT_TRUE(
        requestTo("https://b%C3%BCcher.example/cb").matchesRedirect(url("https://xn--bcher-kva.example/cb")));
    EXPECT_TRUE(
        requestTo("https://xn--bcher-kva.example/cb").matchesRedirect(url("https://B\u00DCCHER.example/cb")));
    EXPECT_FALSE(requestTo("https://b%25C3%25BCcher.example/cb")
                     .matchesRedirect(url("https://xn--bcher-kva.example/cb")))
        << "decoded escapes are not converted to ASCII";
}

TEST(AuthorizeRequest, aPathThatIsNoUTF8MatchesNothing) {
    // A path that does not decode to UTF-8 must not be treated as an absent path, which is equivalent to the
    // root path.
    EXPECT_FALSE(requestTo("https://client.example").matchesRedirect(url("https://client.example/%FF")));
    EXPECT_FALSE(requestTo("https://client.example/").matchesRedirect(url("https://client.example/a%80")));
    EXPECT_FALSE(requestTo("https://client.example/%25FF").matchesRedirect(url("https://client.example/")));
    EXPECT_FALSE(
        requestTo("https://client.example/%25FF").matchesRedirect(url("https://client.example/%FF")));
}

TEST(AuthorizeRequest, aPortTooLargeForAnIntegerMatchesNothing) {
    constexpr auto huge = "https://client.example:99999999999999999999/cb";
    EXPECT_FALSE(requestTo("https://client.example/cb").matchesRedirect(url(huge)));
    EXPECT_FALSE(requestTo(huge).matchesRedirect(url(huge)));
    EXPECT_FALSE(requestTo(huge).matchesRedirect(url("https://client.example/cb")));
    EXPECT_FALSE(requestTo("https://client.example/cb")
                     .matchesRedirect(url("https://u:p@client.example:99999999999999999999/cb")));
    EXPECT_FALSE(requestTo("https://[::1]/cb").matchesRedirect(url("https://[::1]:99999999999999999999/cb")));
    EXPECT_TRUE(requestTo("https://[::1]/cb").matchesRedirect(url("https://[::1]:443/cb")));
    EXPECT_TRUE(requestTo("https://client.example/cb?a:9@b")
                    .matchesRedirect(url("https://client.example/cb?x=https://h:99999999999999999999/")));
}

TEST(AuthorizeRequest, aCanonicallyEquivalentPathIsAnotherPath) {
    EXPECT_FALSE(requestTo("https://client.example/%25C3%25A9")
                     .matchesRedirect(url("https://client.example/e%CC%81")));
    EXPECT_TRUE(
        requestTo("https://client.example/%25C3%25A9").matchesRedirect(url("https://client.example/%C3%A9")));
}

TEST(AuthorizeRequest, matchesOnlyItsNonceAsAString) {
    const auto made = requestTo("https://client.example");
    const auto matches = [&](const JSONValue& value) { return made.matchesNonce(&value); };
    EXPECT_TRUE(matches(std::string(nonce)));
    EXPECT_FALSE(made.matchesNonce(nullptr));
    EXPECT_FALSE(matches(nullptr));
    EXPECT_FALSE(matches(JSONValue::Array{std::string(nonce)}));
    EXPECT_FALSE(matches(JSONValue::Object{{std::string(nonce), std::string(nonce)}}));
    EXPECT_FALSE(matches(1));
    EXPECT_FALSE(matches(true));
    EXPECT_FALSE(matches(""));
    EXPECT_FALSE(matches("abcdefghijklmnopqrst-_"));
    EXPECT_FALSE(matches(std::string(nonce) + " "));
    EXPECT_FALSE(matches(std::string(nonce) + std::string(1, '\0')));
}

TEST(AuthorizeRequest, itsRelayTargetNamesWhereAndWhat) {
    const auto target = requestWithQuery("redirect_uri=https://client.example/cb&state=s").relayTarget();
    EXPECT_EQ(target.redirectURI, url("https://client.example/cb"));
    EXPECT_EQ(target.state, "s");
    EXPECT_EQ(target.nonce, nonce);
}

TEST(AuthorizeRequest, theRelayURLAsksForAFormPostInPlace) {
    const auto made =
        requestWithQuery("a=%20b+c&response_mode=query&redirect_uri=https%3A%2F%2Fclient.example&z");
    const auto relay = made.safariRelayURL().absoluteString();
    EXPECT_EQ(relay, std::string(authorize) +
                         "?a=%20b+c&response_mode=form_post&redirect_uri=https%3A%2F%2Fclient.example&z#" +
                         made.relayTarget().fragment());
}

TEST(AuthorizeRequest, theRelayURLGetsAResponseModeWhereThereIsNone) {
    const auto made = requestTo("https://client.example");
    EXPECT_EQ(made.safariRelayURL().absoluteString(),
              std::string(authorize) + "?redirect_uri=https://client.example&response_mode=form_post#" +
                  made.relayTarget().fragment());
}

TEST(AuthorizeRequest, theRelayURLChangesTheFirstResponseModeOnlyAndReplacesAFragment) {
    const auto made =
        requestWithQuery("redirect_uri=https://client.example&response_mode&Response_mode=x&response_mode="
                         "query#old");
    EXPECT_EQ(made.safariRelayURL().absoluteString(),
              std::string(authorize) +
                  "?redirect_uri=https://"
                  "client.example&response_mode=form_post&Response_mode=x&response_mode=query#" +
                  made.relayTarget().fragment());
}

} // namespace
