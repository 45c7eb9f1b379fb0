// Tests running sessions: their windows, their timeouts, and their pages in WebKitGTK.

#include "Tests/KeyloftCore/AuthSessionTest.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/linux/MainLoop.h"

#include <algorithm>
#include <string>
#include <utility>

namespace TestSupport {

using KeyloftCore::HostError;
using Platform::Size;

namespace {

using Parameters = std::map<std::string, std::string>;

class AuthSessionWindow : public AuthSessionTest {};
class AuthSessionLoad : public AuthSessionTest {};
class AuthSessionTimeout : public AuthSessionTest {};
class AuthSessionPage : public AuthSessionTest {};
class AuthSessionAsWritten : public AuthSessionTest {};

} // namespace

// The window of a session

TEST_F(AuthSessionWindow, isSmallAndOnlyToBeClosed) {
    const auto session = startSession();
    const auto& window = Inspector::window(*session);
    EXPECT_EQ(window->title(), "Keyloft");
    EXPECT_EQ(window->contentView(), Inspector::webView(*session));
    EXPECT_TRUE(window->style().closable);
    EXPECT_FALSE(window->style().miniaturizable);
    EXPECT_FALSE(window->style().resizable);

    TestSupport::activate(*window);
    TestSupport::waitForLayout(*window);
    EXPECT_EQ(TestSupport::nativeTitle(*window), "Keyloft");
    EXPECT_EQ(TestSupport::nativeWindowSize(*window), (Size{.width = 520, .height = 360}));
    EXPECT_EQ(TestSupport::contentFrame(*window), (Platform::Rect{0, 0, 520, 360}));
    EXPECT_TRUE(TestSupport::isShown(*Inspector::webView(*session)));
}

TEST_F(AuthSessionWindow, asksForAFrameThatCannotMinimizeIt) {
    const auto session = startSession();
    const auto other = Platform::Window::create({.width = 520, .height = 360}, {});
    other->makeKeyAndOrderFront();
    EXPECT_TRUE(TestSupport::frameHintsAllowMinimizing(*other));
    EXPECT_FALSE(TestSupport::frameHintsAllowMinimizing(*Inspector::window(*session)));
    other->close();
}

TEST_F(AuthSessionWindow, isHiddenAtTheEndAndStillExists) {
    const auto session = startSession();
    const auto window = Inspector::window(*session);
    ASSERT_TRUE(runUntil([&] { return window->isVisible(); }));
    session->webViewDidClose(*otherView);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Inspector::window(*session), window);
    EXPECT_EQ(window->contentView(), Inspector::webView(*session));
}

TEST_F(AuthSessionWindow, isOnlyHiddenByItsCloseButton) {
    const auto session = startSession();
    const auto& window = Inspector::window(*session);
    ASSERT_TRUE(runUntil([&] { return window->isVisible(); }));
    TestSupport::closeNativeWindow(*window);
    runPending();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(endings.empty());
    // The page keeps running while the window is hidden.
    ASSERT_TRUE(showPage(session, "<p>hidden"));
    runScript(*Inspector::webView(*session), "location.href = 'https://client.example/cb?code=a'");
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(result().params, (Parameters{{"code", "a"}}));
}

// Loading the authorize URL

TEST_F(AuthSessionLoad, goesStraightToTheProviderWithoutAnInitiator) {
    const auto session = startSession();
    const std::string line = "nav GET " + authorizeURL() + " body=-1 stream=false type=-1";
    ASSERT_TRUE(waitForLine(line));
    EXPECT_EQ(lines(), (Lines{"loading " + authorizeURL() + "… mode=query initiator=none", line}));
    EXPECT_TRUE(runUntil([&] { return proxy.count(connectTarget) == 1; }));
    EXPECT_EQ(Inspector::requestTimeout(*session), 60);
}

TEST_F(AuthSessionLoad, comesFromAPageOfTheInitiatorsOrigin) {
    const auto session = startSession("https://client.example");
    const std::string line = "nav GET " + authorizeURL() + " body=-1 stream=false type=-1";
    ASSERT_TRUE(waitForLine(line));
    EXPECT_EQ(lines(), (Lines{"loading " + authorizeURL() + "… mode=query initiator=https://client.example",
                              "didFinish https://client.example/", line}));
    EXPECT_TRUE(runUntil([&] { return proxy.count(connectTarget) == 1; }));
    EXPECT_EQ(proxy.count("client.example:443"), 0U);
}

namespace {

class AuthSessionLoadWithoutOrigin : public AuthSessionTest,
                                     public testing::WithParamInterface<const char*> {};

} // namespace

TEST_P(AuthSessionLoadWithoutOrigin, comesFromAPageOfNoOrigin) {
    const auto session = startSession(GetParam());
    const std::string line = "nav GET " + authorizeURL() + " body=-1 stream=false type=-1";
    ASSERT_TRUE(waitForLine(line));
    EXPECT_EQ(lines(), (Lines{"loading " + authorizeURL() + "… mode=query initiator=" + GetParam(),
                              "didFinish about:blank", line}));
}

INSTANTIATE_TEST_SUITE_P(NoURLs, AuthSessionLoadWithoutOrigin,
                         testing::Values("", "http://[", "https://a b"));

TEST_F(AuthSessionLoad, takesAnyTextThatParsesForTheInitiator) {
    // The session validates the origin with Platform::URL, not with WebKitGTK. Platform::URL parses this
    // string as a relative reference.
    const auto session = startSession("not a url");
    ASSERT_TRUE(waitForLine("nav GET " + authorizeURL() + " body=-1 stream=false type=-1"));
    EXPECT_EQ(std::ranges::count_if(lines(), [](const auto& line) { return line.starts_with("blocked"); }),
              0);
}

TEST_F(AuthSessionLoad, isToldWithoutTheURLsEnd) {
    const auto session = makeSession("&response_mode=form_post&state=" + std::string(200, 's'));
    start(session);
    const auto url = authorizeURL("&response_mode=form_post&state=" + std::string(200, 's'));
    EXPECT_EQ(lines().at(0), "loading " + url.substr(0, 120) + "… mode=form_post initiator=none");
}

TEST_F(AuthSessionLoad, thatFailsEndsTheSession) {
    proxy.route(connectTarget, HTTPResponse().withEnding(HTTPResponse::Ending::dropped));
    const auto session = startSession();
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(error().kind(), HostError::Case::internalError);
    const auto failure = lines().back();
    EXPECT_TRUE(failure.starts_with("didFailProvisional ")) << failure;
    EXPECT_TRUE(failure.ends_with(" " + error().message())) << failure;
}

TEST_F(AuthSessionLoad, thatNobodyAnswersEndsTheSessionAfterTheRequestsTime) {
    const auto session = makeSession();
    Inspector::setRequestTimeout(*session, 0.2);
    start(session);
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(error().kind(), HostError::Case::internalError);
    EXPECT_EQ(error().message(), "The request timed out.");
    EXPECT_EQ(lines().back(), "didFailProvisional NSURLErrorDomain -1001 The request timed out.");
}

TEST_F(AuthSessionLoad, thatAnotherReplacesEndsNothing) {
    const auto session = startSession();
    ASSERT_TRUE(runUntil([&] { return proxy.count(connectTarget) == 1; }));
    ASSERT_TRUE(showPage(session, "<p>another"));
    EXPECT_TRUE(endings.empty());
    EXPECT_EQ(std::ranges::count_if(lines(), [](const auto& line) { return line.starts_with("didFail"); }),
              0);
}

// Timeout of a session

TEST_F(AuthSessionTimeout, isFiveMinutes) {
    const auto session = startSession();
    EXPECT_EQ(Inspector::sessionTimeout(*session), 300);
    EXPECT_TRUE(Inspector::timeoutTimer(*session)->isValid());
    ask(session, get(redirect));
    EXPECT_FALSE(Inspector::timeoutTimer(*session)->isValid());
}

TEST_F(AuthSessionTimeout, endsTheSessionWithoutALine) {
    const auto session = startSession();
    ASSERT_TRUE(waitForLine("nav GET " + authorizeURL() + " body=-1 stream=false type=-1"));
    const auto before = lines();
    Inspector::timeoutTimer(*session)->fire();
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(error().kind(), HostError::Case::timeout);
    EXPECT_EQ(error().message(), "timed out");
    EXPECT_FALSE(Inspector::window(*session)->isVisible());
    EXPECT_EQ(lines(), before);
}

TEST_F(AuthSessionTimeout, comesByItself) {
    const auto session = makeSession();
    Inspector::setSessionTimeout(*session, 0.1);
    start(session);
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(error().kind(), HostError::Case::timeout);
}

TEST_F(AuthSessionTimeout, comesThoughTheWindowWasClosed) {
    const auto session = startSession();
    ASSERT_TRUE(runUntil([&] { return Inspector::window(*session)->isVisible(); }));
    TestSupport::closeNativeWindow(*Inspector::window(*session));
    runPending();
    EXPECT_TRUE(endings.empty());
    Inspector::timeoutTimer(*session)->fire();
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(error().kind(), HostError::Case::timeout);
}

// Navigation, forms and panels of the page

TEST_F(AuthSessionPage, thatGoesToTheRedirectURIIsCaptured) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, ""));
    runScript(*Inspector::webView(*session), "location.href = 'https://client.example/cb?code=a#state=b'");
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(result().params, (Parameters{{"code", "a"}, {"state", "b"}}));
    EXPECT_EQ(proxy.count("client.example:443"), 0U);
}

namespace {

class AuthSessionForm : public AuthSessionTest, public testing::WithParamInterface<const char*> {};

} // namespace

TEST_P(AuthSessionForm, isSeenBeforeItsNavigation) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, "<form method=post action='https://client.example/cb?q=1'>"
                                  "<input name=code value='s p+ü'><input name=twice value=1>"
                                  "<input name=twice value=2><button>Go</button></form>"));
    runScript(*Inspector::webView(*session), GetParam());
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(result().params, (Parameters{{"q", "1"}, {"code", "s p+ü"}, {"twice", "2"}}));
    const Lines expected{R"(form submit hooked → https://client.example/cb?q=1 keys=["code", "twice"])",
                         "nav POST https://client.example/cb?q=1 body=-1 stream=false type=1",
                         "POST body missing; using hooked form fields for https://client.example/cb?q=1",
                         R"(captured keys=["code", "q", "twice"] code=s p+ü state=-)"};
    EXPECT_EQ(Lines(lines().end() - 4, lines().end()), expected);
}

INSTANTIATE_TEST_SUITE_P(Ways, AuthSessionForm,
                         testing::Values("document.forms[0].submit()", "document.forms[0].requestSubmit()",
                                         "document.querySelector('button').click()"));

TEST_F(AuthSessionPage, thatClosesItsWindowCancels) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, ""));
    runScript(*Inspector::webView(*session), "window.close()");
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(error().kind(), HostError::Case::cancelled);
    EXPECT_EQ(lines().back(), "webViewDidClose");
}

TEST_F(AuthSessionPage, thatTriesToLeaveStays) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, "<title>Still here</title>"));
    const auto& view = Inspector::webView(*session);
    const std::pair<std::string, std::string> places[] = {{"https://apple.com/", "apple.com"},
                                                          {"https://evil.test/", "evil.test"},
                                                          {"data:text/plain,x", "?"},
                                                          {"about:blank", "?"}};
    for (const auto& [place, shown] : places) {
        for (const std::string& script :
             {"location.href = '" + place + "'",
              "document.body.append(Object.assign(document.createElement('iframe'), {src: '" + place +
                  "'}))"}) {
            const auto before = lines().size();
            runScript(*view, script);
            ASSERT_TRUE(runUntil([&] { return lines().size() >= before + 2; })) << script;
            EXPECT_EQ(lines().back(), "blocked navigation to " + shown);
        }
    }
    EXPECT_EQ(view->title(), "Still here");
    EXPECT_TRUE(endings.empty());
}

TEST_F(AuthSessionPage, opensNoWindow) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, "<a id=other target=_blank href='https://evil.test/'>a</a>"
                                  "<a id=own target=_blank href='https://idmsa.apple.com/'>a</a>"));
    const auto& view = Inspector::webView(*session);
    runScript(*view, "document.getElementById('other').click()");
    ASSERT_TRUE(waitForLine("blocked navigation to evil.test"));
    runScript(*view, "document.getElementById('own').click()");
    ASSERT_TRUE(waitForLine("nav GET https://idmsa.apple.com/ body=-1 stream=false type=0"));
    runScript(*view, "document.title = 'window: ' + window.open('https://appleid.apple.com/')");
    EXPECT_TRUE(runUntil([&] { return view->title() == "window: null"; }));
    EXPECT_EQ(view->url(), url("https://appleid.apple.com/"));
    EXPECT_TRUE(endings.empty());
}

TEST_F(AuthSessionPage, aLinkForANewWindowIsCapturedToo) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, "<a target=_blank href='https://client.example/cb?code=a'>a</a>"));
    runScript(*Inspector::webView(*session), "document.links[0].click()");
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(result().params, (Parameters{{"code", "a"}}));
}

TEST_F(AuthSessionPage, aFrameThatReachesTheRedirectURIIsCaptured) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, "<iframe src='https://client.example/cb?code=a'></iframe>"));
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(result().params, (Parameters{{"code", "a"}}));
}

TEST_F(AuthSessionPage, showsNoPanels) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, ""));
    const auto& view = Inspector::webView(*session);
    runScript(*view, "alert('a'); document.title = confirm('b') + ' ' + prompt('c', 'd')");
    EXPECT_TRUE(runUntil([&] { return view->title() == "false null"; }));
    EXPECT_EQ(TestSupport::shownSheet(*Inspector::window(*session)), std::nullopt);
}

TEST_F(AuthSessionPage, mayNotGoBackToItsOwnOrigin) {
    // The policy allows the session's own load of a page with the initiator's origin. After that, the policy
    // treats the initiator's origin like any other origin.
    const auto session = startSession("https://client.example");
    ASSERT_TRUE(waitForLine("nav GET " + authorizeURL() + " body=-1 stream=false type=-1"));
    runScript(*Inspector::webView(*session), "location.href = 'https://client.example/'");
    ASSERT_TRUE(waitForLine("blocked navigation to client.example"));
    EXPECT_EQ(std::ranges::count(lines(), "nav GET https://client.example/ body=-1 stream=false type=-1"), 1);
    EXPECT_TRUE(endings.empty());
}

// Surprising but intended behavior

TEST_F(AuthSessionAsWritten, aSecondStartOpensASecondWindowAndLeavesTheFirst) {
    const auto session = startSession();
    start(session);
    ASSERT_EQ(Inspector::runCount(*session), 2U);
    const auto& first = Inspector::window(*session, 0);
    const auto& second = Inspector::window(*session, 1);
    EXPECT_NE(Inspector::webView(*session, 0), Inspector::webView(*session, 1));
    ASSERT_TRUE(runUntil([&] { return first->isVisible() && second->isVisible(); }));

    ask(session, get(redirect));
    EXPECT_EQ(endings.size(), 1U);
    EXPECT_FALSE(second->isVisible());
    EXPECT_FALSE(Inspector::timeoutTimer(*session, 1)->isValid());
    EXPECT_TRUE(first->isVisible());
    EXPECT_TRUE(Inspector::timeoutTimer(*session, 0)->isValid());
    Inspector::timeoutTimer(*session, 0)->fire();
    EXPECT_EQ(endings.size(), 1U);
}

TEST_F(AuthSessionAsWritten, theFirstStartsTimerStillFires) {
    const auto session = startSession();
    start(session);
    Inspector::timeoutTimer(*session, 0)->fire();
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(error().kind(), HostError::Case::timeout);
}

TEST_F(AuthSessionAsWritten, anInitiatorThatIsSetLateHasNoEffect) {
    const auto session = startSession();
    session->initiatorOrigin = "https://client.example";
    ASSERT_TRUE(waitForLine("nav GET " + authorizeURL() + " body=-1 stream=false type=-1"));
    EXPECT_EQ(lines().front(), "loading " + authorizeURL() + "… mode=query initiator=none");
    EXPECT_EQ(std::ranges::count(lines(), "didFinish https://client.example/"), 0);
}

TEST_F(AuthSessionAsWritten, whatThePageDoesAfterTheEndIsTold) {
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, ""));
    ask(session, get("https://client.example/cb?code=first"));
    runScript(*Inspector::webView(*session), "location.href = 'https://client.example/cb?code=second'");
    ASSERT_TRUE(waitForLine(R"(captured keys=["code"] code=second state=-)"));
    ASSERT_EQ(endings.size(), 1U);
    EXPECT_EQ(result().params, (Parameters{{"code", "first"}}));
}

} // namespace TestSupport
