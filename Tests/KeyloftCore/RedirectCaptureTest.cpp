#include "KeyloftCore/RedirectCapture.h"

#include "KeyloftCore/AuthSession.h"
#include "Platform/Foundation/Base64.h"
#include "Platform/Foundation/JSON.h"
#include "Tests/Support/CapturedError.h"
#include "Tests/Support/MemoryStream.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/Vectors.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using KeyloftCore::RedirectCapture;
using KeyloftCore::SubmittedForm;
using nlohmann::json;
using Platform::JSONValue;
using Platform::NavigationAction;
using Platform::NavigationType;
using Platform::URL;
using TestSupport::CapturedError;
using TestSupport::expectVectors;
using TestSupport::MemoryStream;
using TestSupport::present;

using Parameters = std::map<std::string, std::string>;

constexpr std::string_view redirect = "https://client.example/cb";

URL url(std::string_view text) { return present(URL::fromString(text)); }

struct Captured {
    Parameters parameters;
    std::vector<std::string> log;
};

Captured capture(const NavigationAction& action, const std::optional<SubmittedForm>& form = std::nullopt) {
    const CapturedError error;
    auto parameters = RedirectCapture::parameters(present(action.url), action, form);
    return {.parameters = std::move(parameters), .log = error.messages()};
}

/// A GET navigation to the redirect URI with `rest` appended.
NavigationAction get(std::string_view rest) {
    NavigationAction action;
    action.url = url(std::string(redirect) + std::string(rest));
    action.method = "GET";
    return action;
}

NavigationAction post(std::string_view rest = "") {
    auto action = get(rest);
    action.method = "POST";
    return action;
}

NavigationAction postOf(const std::shared_ptr<MemoryStream>& stream) {
    auto action = post();
    action.bodyStream = stream;
    return action;
}

SubmittedForm form(const Parameters& fields) {
    return {.action = "https://appleid.apple.com/earlier", .fields = fields};
}

TEST(CaptureVectors, hold) {
    expectVectors("capture", [](const json& in) -> json {
        NavigationAction action;
        action.url = url(in["url"].get<std::string>());
        if (in.contains("method") && !in["method"].is_null()) {
            action.method = in["method"].get<std::string>();
        }
        const auto bytes = [&in](const char* name) -> std::optional<std::string> {
            return in.contains(name) && !in[name].is_null()
                       ? Platform::base64Decoded(in[name].get<std::string>())
                       : std::nullopt;
        };
        action.body = bytes("body");
        if (const auto stream = bytes("stream")) {
            action.bodyStream = std::make_shared<MemoryStream>(*stream);
        }
        std::optional<SubmittedForm> form;
        if (in.contains("form") && !in["form"].is_null()) {
            form = SubmittedForm{.action = in["form"]["action"].get<std::string>(),
                                 .fields = in["form"]["fields"].get<Parameters>()};
        }
        const auto captured = capture(action, form);
        return {{"params", captured.parameters}, {"log", captured.log}};
    });
}

TEST(PolicyVectors, holdOfTheHosts) {
    expectVectors("policy", [](const json& in) -> json {
        const auto parsed = URL::fromString(in.get<std::string>());
        if (!parsed) {
            return {};
        }
        const auto host = parsed->host();
        return host && RedirectCapture::isProviderHost(*host) ? "allow"
                                                              : "blocked navigation to " + host.value_or("?");
    });
}

// Sources of the captured parameters

TEST(RedirectCapture, theLastOfSeveralEqualNamesCounts) {
    EXPECT_EQ(capture(get("?code=a&code=b")).parameters, (Parameters{{"code", "b"}}));
}

TEST(RedirectCapture, theFragmentOverridesTheQuery) {
    EXPECT_EQ(capture(get("?state=x#state=y")).parameters, (Parameters{{"state", "y"}}));
}

TEST(RedirectCapture, anItemWithoutAnEqualsSignIsEmpty) {
    EXPECT_EQ(capture(get("?code")).parameters, (Parameters{{"code", ""}}));
}

TEST(RedirectCapture, aPlusSignStaysOne) {
    EXPECT_EQ(capture(get("?q=a+b#f=a+b")).parameters, (Parameters{{"q", "a+b"}, {"f", "a+b"}}));
    auto action = post();
    action.body = "b=a+b";
    EXPECT_EQ(capture(action).parameters, (Parameters{{"b", "a+b"}}));
}

TEST(RedirectCapture, theFragmentIsDecodedBeforeItIsSplit) {
    EXPECT_EQ(capture(get("#a=1%26b=2")).parameters, (Parameters{{"a", "1"}, {"b", "2"}}));
}

TEST(RedirectCapture, nothingAtAllIsAnEmptyResult) {
    const auto captured = capture(get(""));
    EXPECT_EQ(captured.parameters, Parameters());
    EXPECT_EQ(captured.log, std::vector<std::string>{"captured keys=[] code=- state=-"});
}

TEST(RedirectCapture, aGetIgnoresTheSubmittedForm) {
    EXPECT_EQ(capture(get("?code=a"), form({{"code", "b"}, {"more", "c"}})).parameters,
              (Parameters{{"code", "a"}}));
}

TEST(RedirectCapture, onlyAnUpperCasePostIsOne) {
    for (const auto& method : {std::optional<std::string>("post"), std::optional<std::string>()}) {
        auto action = get("?code=a");
        action.method = method;
        action.body = "code=b";
        EXPECT_EQ(capture(action, form({{"code", "c"}})).parameters, (Parameters{{"code", "a"}}));
    }
}

TEST(RedirectCapture, aBodyOverridesQueryAndFragment) {
    auto action = post("?code=a&q=1#code=b&f=2");
    action.body = "code=c&p=3";
    const auto captured = capture(action, form({{"code", "d"}}));
    EXPECT_EQ(captured.parameters, (Parameters{{"code", "c"}, {"q", "1"}, {"f", "2"}, {"p", "3"}}));
    EXPECT_EQ(captured.log.front(), "POST body present (10 bytes)");
}

TEST(RedirectCapture, aBodyCountsBeforeAStream) {
    auto action = postOf(std::make_shared<MemoryStream>("code=stream"));
    action.body = "code=body";
    EXPECT_EQ(capture(action).parameters, (Parameters{{"code", "body"}}));
}

TEST(RedirectCapture, aBodyThatIsNoTextLeavesItToTheStreamThenToTheForm) {
    auto action = postOf(std::make_shared<MemoryStream>("code=stream"));
    action.body = "code=\xff";
    EXPECT_EQ(capture(action, form({{"code", "form"}})).parameters, (Parameters{{"code", "stream"}}));
    action.bodyStream = std::make_shared<MemoryStream>("code=\xff");
    EXPECT_EQ(capture(action, form({{"code", "form"}})).parameters, (Parameters{{"code", "form"}}));
}

TEST(RedirectCapture, aStreamWithoutBytesIsAnAnswer) {
    const auto captured = capture(postOf(std::make_shared<MemoryStream>("")), form({{"code", "form"}}));
    EXPECT_EQ(captured.parameters, Parameters());
    EXPECT_EQ(captured.log.front(), "POST body via stream (0 chars)");
}

TEST(RedirectCapture, aStreamIsCountedInCharacters) {
    EXPECT_EQ(capture(postOf(std::make_shared<MemoryStream>("s=größe"))).log.front(),
              "POST body via stream (7 chars)");
}

TEST(RedirectCapture, aFormOfAnEarlierPageStandsInForTheBody) {
    const auto captured =
        capture(post("?code=query&q=1#state=fragment"), form({{"code", "form"}, {"state", "form"}}));
    EXPECT_EQ(captured.parameters, (Parameters{{"code", "form"}, {"state", "form"}, {"q", "1"}}));
    EXPECT_EQ(captured.log,
              (std::vector<std::string>{"POST body missing; using hooked form fields for "
                                        "https://appleid.apple.com/earlier",
                                        R"(captured keys=["code", "q", "state"] code=form state=form)"}));
}

TEST(RedirectCapture, aPostWithoutAnySourceIsNoError) {
    const auto captured = capture(post("?code=a"));
    EXPECT_EQ(captured.parameters, (Parameters{{"code", "a"}}));
    EXPECT_EQ(captured.log.front(), "POST body missing and no hooked form");
}

TEST(RedirectCapture, aLongActionIsCut) {
    const SubmittedForm submitted{.action = std::string(81, 'a'), .fields = {}};
    EXPECT_EQ(capture(post(), submitted).log.front(),
              "POST body missing; using hooked form fields for " + std::string(80, 'a'));
}

// Log lines about captures and navigations

TEST(RedirectCapture, upToTwelveCharactersAreLoggedWhole) {
    EXPECT_EQ(capture(get("?code=123456789012")).log.back(),
              R"(captured keys=["code"] code=123456789012 state=-)");
    EXPECT_EQ(capture(get("?code=1234567890123&state=abcdefghijklmnop")).log.back(),
              R"(captured keys=["code", "state"] code=12345678…(13) state=abcdefgh…(16))");
}

TEST(RedirectCapture, namesAreListedInTheOrderOfTheirCodePoints) {
    EXPECT_EQ(RedirectCapture::nameList({{"é", ""}, {"b", ""}, {"Z", ""}, {"", ""}, {"😀", ""}, {"ｱ", ""}}),
              R"(["", "Z", "b", "é", "ｱ", "😀"])");
    EXPECT_EQ(RedirectCapture::nameList({}), "[]");
}

TEST(NavigationLine, tellsTheRequest) {
    NavigationAction action;
    EXPECT_EQ(RedirectCapture::navigationLine(url("about:blank"), action),
              "nav GET about:blank body=-1 stream=false type=-1");
    action.method = "POST";
    action.body = "größe";
    action.bodyStream = std::make_shared<MemoryStream>("");
    action.navigationType = NavigationType::formSubmitted;
    EXPECT_EQ(RedirectCapture::navigationLine(url("https://x.test/"), action),
              "nav POST https://x.test/ body=7 stream=true type=1");
    action.body = "";
    action.navigationType = NavigationType::formResubmitted;
    EXPECT_EQ(RedirectCapture::navigationLine(url("https://x.test/"), action),
              "nav POST https://x.test/ body=0 stream=true type=4");
}

TEST(NavigationLine, cutsTheURLAtAHundredCharacters) {
    const std::string text = "https://x.test/" + std::string(85, 'a');
    EXPECT_EQ(RedirectCapture::navigationLine(url(text + "b"), {}),
              "nav GET " + text + " body=-1 stream=false type=-1");
}

// Reading body streams

TEST(ReadStream, readsBlocksOf4096BytesToTheEnd) {
    MemoryStream stream(std::string(9000, 'x'));
    EXPECT_EQ(RedirectCapture::read(stream), std::string(9000, 'x'));
    EXPECT_EQ(stream.events,
              (std::vector<std::string>{"open", "read 4096", "read 4096", "read 4096", "close"}));
}

TEST(ReadStream, readsNothingWhereNothingIsAvailable) {
    MemoryStream stream("");
    EXPECT_EQ(RedirectCapture::read(stream), "");
    EXPECT_EQ(stream.events, (std::vector<std::string>{"open", "close"}));
}

TEST(ReadStream, aCharacterMayLieAcrossTwoBlocks) {
    const std::string text = std::string(4095, 'x') + "ü";
    MemoryStream stream(text);
    EXPECT_EQ(RedirectCapture::read(stream), text);
}

TEST(ReadStream, keepsWhatCameBeforeAFailure) {
    MemoryStream stream(std::string(9000, 'x'));
    stream.failsFrom = 2;
    EXPECT_EQ(RedirectCapture::read(stream), std::string(4096, 'x'));
    EXPECT_EQ(stream.events, (std::vector<std::string>{"open", "read 4096", "read 4096", "close"}));
}

TEST(ReadStream, whatIsNoTextIsNothing) {
    MemoryStream stream("a\xff");
    EXPECT_EQ(RedirectCapture::read(stream), std::nullopt);
    EXPECT_EQ(stream.events.back(), "close");
}

// Hosts of the provider

TEST(ProviderHosts, areComparedExactly) {
    for (const auto* host : {"appleid.apple.com", "idmsa.apple.com", ".apple.com", "a.b.apple.com",
                             "APPLEID.apple.com", "appleid.cdn-apple.com"}) {
        EXPECT_TRUE(RedirectCapture::isProviderHost(host)) << host;
    }
    for (const auto* host : {"apple.com", "cdn-apple.com", "appleid.APPLE.com", "evilapple.com",
                             "apple.com.evil.test", "appleid.apple.com.", "a.CDN-apple.com", ""}) {
        EXPECT_FALSE(RedirectCapture::isProviderHost(host)) << host;
    }
}

// The first page of a session, and the script that reports submitted forms

TEST(BootstrapPage, goesToTheAuthorizeURL) {
    EXPECT_EQ(
        RedirectCapture::bootstrapPage(url("https://appleid.apple.com/auth/authorize?a=b&c='")),
        R"(<!doctype html><script>location.href = "https:\/\/appleid.apple.com\/auth\/authorize?a=b&c='")"
        "</script>");
    EXPECT_EQ(RedirectCapture::bootstrapPage(url("x:</script>")).find("</script>"),
              RedirectCapture::bootstrapPage(url("x:</script>")).rfind("</script>"));
}

TEST(FormHook, isTheScriptThatPagesAreGiven) {
    EXPECT_EQ(SubmittedForm::hookScript.size(), 570U);
    EXPECT_EQ(SubmittedForm::hookScript, R"((function () {
  function send(form) {
    try {
      var fields = {};
      new FormData(form).forEach(function (v, k) { fields[k] = String(v); });
      window.webkit.messageHandlers.keyloft.postMessage({ action: form.action, method: form.method, fields: fields });
    } catch (e) {}
  }
  document.addEventListener('submit', function (e) { if (e.target && e.target.tagName === 'FORM') send(e.target); }, true);
  var orig = HTMLFormElement.prototype.submit;
  HTMLFormElement.prototype.submit = function () { send(this); return orig.apply(this, arguments); };
})();)");
}

// A session without an application object, and the parsing of messages about submitted forms

TEST(AuthSessionDeathTest, needsTheApplicationObject) {
    const auto session = KeyloftCore::AuthSession::create(
        {url("https://appleid.apple.com/auth/authorize?redirect_uri=https://a.example"), "nonce"},
        [](const KeyloftCore::AuthSession::Result&) {});
    EXPECT_DEATH(session->start(), "AuthSession::start was called before the application object was created");
}

JSONValue message(std::string_view text) { return present(JSONValue::parse(text)); }

TEST(SubmittedForm, isReadFromAMessage) {
    EXPECT_EQ(SubmittedForm::fromMessage(message(R"({"action":"a","method":"post","fields":{"x":"1"}})")),
              (SubmittedForm{.action = "a", .fields = {{"x", "1"}}}));
    EXPECT_EQ(SubmittedForm::fromMessage(message(R"({"action":"","fields":{}})")), SubmittedForm());
}

TEST(SubmittedForm, isNothingWhereTheMessageIsAnythingElse) {
    for (const auto* text :
         {R"([])", R"(["action"])", R"({})", R"({"fields":{}})", R"({"action":"a"})",
          R"({"action":1,"fields":{}})", R"({"action":null,"fields":{}})", R"({"action":"a","fields":[]})",
          R"({"action":"a","fields":"x"})", R"({"action":"a","fields":{"x":1}})",
          R"({"action":"a","fields":{"x":null}})", R"({"action":"a","fields":{"x":"1","y":["2"]}})"}) {
        EXPECT_EQ(SubmittedForm::fromMessage(message(text)), std::nullopt) << text;
    }
    EXPECT_EQ(SubmittedForm::fromMessage(JSONValue()), std::nullopt);
    EXPECT_EQ(SubmittedForm::fromMessage(JSONValue("text")), std::nullopt);
}

} // namespace
