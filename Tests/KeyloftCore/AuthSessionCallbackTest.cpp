// Tests the delegate methods of AuthSession by calling them directly, without a window or a page.

#include "Tests/KeyloftCore/AuthSessionTest.h"
#include "Tests/Support/MemoryStream.h"
#include "Tests/Support/Vectors.h"

#include <string>
#include <utility>

namespace TestSupport {

using KeyloftCore::AuthSession;
using KeyloftCore::HostError;
using KeyloftCore::ResponseMode;
using nlohmann::json;
using Platform::Error;
using Platform::JSONValue;
using Platform::NavigationAction;
using Platform::NavigationActionPolicy;
using Platform::ScriptMessage;
using Platform::URL;

namespace {

using Parameters = std::map<std::string, std::string>;
using Answers = std::vector<NavigationActionPolicy>;

const Answers cancelled{NavigationActionPolicy::cancel};
const Answers allowed{NavigationActionPolicy::allow};

ScriptMessage formMessage(const std::string& action, const JSONValue::Object& fields) {
    return {.name = "keyloft",
            .body = JSONValue::Object{{"action", action}, {"method", "post"}, {"fields", fields}}};
}

Error urlError(int code) {
    return {.domain = std::string(Error::urlDomain),
            .code = code,
            .localizedDescription = "It went wrong.",
            .failingURL = std::nullopt};
}

NavigationAction post(std::string_view text) {
    NavigationAction action;
    action.url = URL::fromString(text);
    action.method = "POST";
    return action;
}

class AuthSessionPolicy : public AuthSessionTest {};
class AuthSessionCapture : public AuthSessionTest {};
class AuthSessionEnding : public AuthSessionTest {};

} // namespace

// Navigation policy

TEST_F(AuthSessionPolicy, VectorsHold) {
    const auto session = makeSession();
    expectVectors("policy", [&](const json& in) -> json {
        NavigationAction action;
        action.url = URL::fromString(in.get<std::string>());
        if (!action.url) {
            return {};
        }
        const auto before = lines().size();
        const auto answers = ask(session, action);
        if (answers == allowed) {
            EXPECT_EQ(lines().size(), before + 1);
            return "allow";
        }
        EXPECT_EQ(answers, cancelled);
        EXPECT_EQ(lines().size(), before + 2);
        return lines().back();
    });
    EXPECT_TRUE(endings.empty());
}

TEST_F(AuthSessionPolicy, aNavigationWithoutAURLIsCancelledInSilence) {
    EXPECT_EQ(ask(makeSession(), {}), cancelled);
    EXPECT_EQ(lines(), Lines());
}

TEST_F(AuthSessionPolicy, blocksAndTellsWhatIsNotTheProviders) {
    const auto session = makeSession();
    const std::pair<std::string, std::string> blocked[] = {
        {"https://apple.com/", "apple.com"},
        {"https://appleid.APPLE.com/", "appleid.APPLE.com"},
        {"about:blank", "?"},
        {"data:text/html,x", "?"},
        {"https://client.example/", "client.example"}};
    for (const auto& [text, shown] : blocked) {
        EXPECT_EQ(ask(session, get(text)), cancelled) << text;
        EXPECT_EQ(lines().back(), "blocked navigation to " + shown);
    }
    EXPECT_EQ(ask(session, get("https://APPLEID.apple.com/")), allowed);
    EXPECT_EQ(lines().back(), "nav GET https://APPLEID.apple.com/ body=-1 stream=false type=-1");
}

TEST_F(AuthSessionPolicy, anotherSchemeOfTheProvidersHostIsAllowed) {
    EXPECT_EQ(ask(makeSession(), get("http://appleid.apple.com/")), allowed);
}

TEST_F(AuthSessionPolicy, theRedirectURIIsKnownByEverythingButQueryAndFragment) {
    for (const auto* text : {"https://client.example/cb/", "https://client.example:444/cb",
                             "http://client.example/cb", "https://CLIENT.example/cb"}) {
        EXPECT_EQ(ask(makeSession(), get(text)), cancelled);
        EXPECT_TRUE(endings.empty()) << text;
    }
    EXPECT_EQ(ask(makeSession(), get("https://client.example:443/cb?code=a#b")), cancelled);
    EXPECT_EQ(endings.size(), 1U);
}

TEST_F(AuthSessionCapture, theAnswerComesBeforeTheResult) {
    std::vector<std::string> events;
    const auto session = AuthSession::create(
        {url(authorizeURL()), "nonce"}, [&](const AuthSession::Result&) { events.emplace_back("result"); });
    session->decidePolicy(
        *otherView, get("https://client.example/cb?code=a"), [&](NavigationActionPolicy policy) {
            events.emplace_back(policy == NavigationActionPolicy::cancel ? "cancel" : "allow");
        });
    EXPECT_EQ(events, (std::vector<std::string>{"cancel", "result"}));
}

TEST_F(AuthSessionCapture, theResultIsTheRequestsWithTheAnswersParameters) {
    ask(makeSession("&response_mode=fragment&state=s"), get("https://client.example/cb?code=a#state=s"));
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(result(), (KeyloftCore::AuthResult{.responseMode = ResponseMode::fragment,
                                                 .redirectURI = url("https://client.example/cb"),
                                                 .params = {{"code", "a"}, {"state", "s"}}}));
    EXPECT_EQ(lines(), (Lines{"nav GET https://client.example/cb?code=a#state=s body=-1 stream=false type=-1",
                              R"(captured keys=["code", "state"] code=a state=s)"}));
}

TEST_F(AuthSessionCapture, aWebMessageRequestIsAnsweredByANavigationToo) {
    ask(makeSession("&response_mode=web_message"), get("https://client.example/cb?code=a"));
    EXPECT_EQ(result().responseMode, ResponseMode::webMessage);
}

TEST_F(AuthSessionCapture, bodyAndStreamAreRead) {
    auto action = post(redirect);
    action.body = "code=body";
    ask(makeSession(), action);
    action.body.reset();
    const auto stream = std::make_shared<MemoryStream>("code=" + std::string(5000, 's'));
    action.bodyStream = stream;
    ask(makeSession(), action);
    ASSERT_EQ(endings.size(), 2U);
    EXPECT_EQ(endings[0]->params, (Parameters{{"code", "body"}}));
    EXPECT_EQ(endings[1]->params, (Parameters{{"code", std::string(5000, 's')}}));
    EXPECT_EQ(stream->events, (std::vector<std::string>{"open", "read 4096", "read 4096", "close"}));
    EXPECT_EQ(lines(), (Lines{"nav POST https://client.example/cb body=9 stream=false type=-1",
                              "POST body present (9 bytes)", R"(captured keys=["code"] code=body state=-)",
                              "nav POST https://client.example/cb body=-1 stream=true type=-1",
                              "POST body via stream (5005 chars)",
                              R"(captured keys=["code"] code=ssssssss…(5000) state=-)"}));
}

TEST_F(AuthSessionCapture, theLastFormStandsInForTheBody) {
    const auto session = makeSession();
    session->didReceiveScriptMessage(formMessage("https://appleid.apple.com/first", {{"old", "1"}}));
    session->didReceiveScriptMessage(
        formMessage("https://appleid.apple.com/second", {{"code", "form"}, {"b", "2"}}));
    ask(session, post("https://client.example/cb?code=query&q=1"));
    EXPECT_EQ(result().params, (Parameters{{"code", "form"}, {"b", "2"}, {"q", "1"}}));
    EXPECT_EQ(lines(),
              (Lines{R"(form submit hooked → https://appleid.apple.com/first keys=["old"])",
                     R"(form submit hooked → https://appleid.apple.com/second keys=["b", "code"])",
                     "nav POST https://client.example/cb?code=query&q=1 body=-1 stream=false type=-1",
                     "POST body missing; using hooked form fields for https://appleid.apple.com/second",
                     R"(captured keys=["b", "code", "q"] code=form state=-)"}));
}

TEST_F(AuthSessionCapture, theLastFormOutlivesCapturesAndGETs) {
    const auto session = makeSession();
    session->didReceiveScriptMessage(formMessage("https://appleid.apple.com/form", {{"code", "form"}}));
    ask(session, get("https://appleid.apple.com/next"));
    ask(session, get("https://client.example/cb?code=query"));
    EXPECT_EQ(result().params, (Parameters{{"code", "query"}}));
    ask(session, post(redirect));
    EXPECT_EQ(lines().back(), R"(captured keys=["code"] code=form state=-)");
    EXPECT_EQ(endings.size(), 1U);
}

TEST_F(AuthSessionCapture, anyHandlersNameWillDo) {
    const auto session = makeSession();
    auto message = formMessage("https://appleid.apple.com/form", {{"code", "form"}});
    message.name = "other";
    session->didReceiveScriptMessage(message);
    ask(session, post(redirect));
    EXPECT_EQ(result().params, (Parameters{{"code", "form"}}));
}

TEST_F(AuthSessionCapture, aMalformedMessageIsDroppedInSilence) {
    const auto session = makeSession();
    session->didReceiveScriptMessage(formMessage("https://appleid.apple.com/form", {{"code", "form"}}));
    session->didReceiveScriptMessage({.name = "keyloft", .body = "text"});
    session->didReceiveScriptMessage({.name = "keyloft", .body = nullptr});
    session->didReceiveScriptMessage(formMessage("https://appleid.apple.com/form", {{"code", 1}}));
    EXPECT_EQ(lines().size(), 1U);
    ask(session, post(redirect));
    EXPECT_EQ(result().params, (Parameters{{"code", "form"}}));
}

TEST_F(AuthSessionCapture, aLongActionIsCutInTheLog) {
    makeSession()->didReceiveScriptMessage(formMessage(std::string(81, 'a'), {}));
    EXPECT_EQ(lines(), Lines{"form submit hooked → " + std::string(80, 'a') + " keys=[]"});
}

// End of the session

TEST_F(AuthSessionEnding, aFailedLoadIsAnInternalError) {
    makeSession()->didFailProvisionalNavigation(*otherView, urlError(-1003));
    EXPECT_EQ(error().kind(), HostError::Case::internalError);
    EXPECT_EQ(error().code(), "internal");
    EXPECT_EQ(error().message(), "It went wrong.");
    EXPECT_EQ(lines(), Lines{"didFailProvisional NSURLErrorDomain -1003 It went wrong."});
}

TEST_F(AuthSessionEnding, aCancelledLoadIsNone) {
    const auto session = makeSession();
    session->didFailProvisionalNavigation(*otherView, urlError(-999));
    EXPECT_TRUE(endings.empty());
    EXPECT_EQ(lines(), Lines());
    session->didFailProvisionalNavigation(
        *otherView, {.domain = "Other", .code = -999, .localizedDescription = "x", .failingURL = {}});
    EXPECT_EQ(endings.size(), 1U);
    EXPECT_EQ(lines(), Lines{"didFailProvisional Other -999 x"});
}

TEST_F(AuthSessionEnding, aFailureAfterThePageBeganToShowIsNone) {
    const auto session = makeSession();
    session->didFailNavigation(*otherView, urlError(-1005));
    EXPECT_TRUE(endings.empty());
    EXPECT_EQ(lines(), Lines());
}

TEST_F(AuthSessionEnding, aPageThatClosesItsWindowCancels) {
    makeSession()->webViewDidClose(*otherView);
    EXPECT_EQ(error().kind(), HostError::Case::cancelled);
    EXPECT_EQ(error().message(), "user cancelled");
    EXPECT_EQ(lines(), Lines{"webViewDidClose"});
}

TEST_F(AuthSessionEnding, onlyTheFirstCounts) {
    const auto session = makeSession();
    ask(session, get("https://client.example/cb?code=first"));
    session->didFailProvisionalNavigation(*otherView, urlError(-1003));
    session->webViewDidClose(*otherView);
    ask(session, get("https://client.example/cb?code=second"));
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(result().params, (Parameters{{"code", "first"}}));
    // Events that occur after the session has ended are still logged.
    EXPECT_EQ(lines(), (Lines{"nav GET https://client.example/cb?code=first body=-1 stream=false type=-1",
                              R"(captured keys=["code"] code=first state=-)",
                              "didFailProvisional NSURLErrorDomain -1003 It went wrong.", "webViewDidClose",
                              "nav GET https://client.example/cb?code=second body=-1 stream=false type=-1",
                              R"(captured keys=["code"] code=second state=-)"}));
}

TEST_F(AuthSessionEnding, aResultDoesNotReplaceAFailure) {
    const auto session = makeSession();
    session->webViewDidClose(*otherView);
    ask(session, get("https://client.example/cb?code=a"));
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(error().kind(), HostError::Case::cancelled);
}

TEST_F(AuthSessionEnding, aFinishedLoadIsOnlyTold) {
    const auto session = makeSession();
    session->didFinishNavigation(*otherView);
    EXPECT_EQ(lines(), Lines{"didFinish "});
    EXPECT_TRUE(endings.empty());
}

TEST_F(AuthSessionEnding, aSessionThatNeverStartedEndsInSilence) {
    std::weak_ptr<AuthSession> weak;
    {
        const auto session = makeSession();
        weak = session;
        EXPECT_EQ(Inspector::runCount(*session), 0U);
    }
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(endings.empty());
    EXPECT_EQ(lines(), Lines());
}

TEST_F(AuthSessionEnding, theCompletionLetsGoOfWhatItHolds) {
    std::weak_ptr<AuthSession> weak;
    {
        const auto holder = std::make_shared<Session>();
        *holder =
            AuthSession::create({url(authorizeURL()), "nonce"}, [holder](const AuthSession::Result&) {});
        weak = *holder;
        (*holder)->webViewDidClose(*otherView);
    }
    EXPECT_TRUE(weak.expired());
}

} // namespace TestSupport
