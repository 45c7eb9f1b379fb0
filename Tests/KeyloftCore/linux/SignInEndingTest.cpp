// Tests how a sign-in ends if the session receives no response or more than one.

#include "Platform/AppKit/Window.h"
#include "Platform/WebKit/WebView.h"
#include "Tests/KeyloftCore/AuthSessionInspector.h"
#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/linux/MainLoop.h"

using namespace KeyloftCore;
using TestSupport::HTTPResponse;
using TestSupport::ProviderNetwork;
using TestSupport::runUntil;
using TestSupport::TLSServer;

namespace {

const auto signInPage = HTTPResponse::html("<!DOCTYPE html><title>Sign in</title><p>Sign in");

class SignInEndingTest : public SignInTest {
protected:
    /// Expects that the sign-in failed before a page was shown, and that the error and the log line contain
    /// the same message.
    void expectFailure(const std::string& domainAndCode) const {
        ASSERT_EQ(results.size(), 1U);
        ASSERT_FALSE(results.front().has_value());
        const auto message = results.front().error().message();
        EXPECT_NE(message, "");
        expectError(HostError::internalError(message));
        auto expected = linesOfPage(ResponseMode::formPost);
        expected.back() = "didFailProvisional " + domainAndCode + " " + message;
        expectLines(expected);
        EXPECT_FALSE(window()->isVisible());
    }

    static HTTPResponse held() { return signInPage.withEnding(HTTPResponse::Ending::held); }
};

} // namespace

TEST_F(SignInEndingTest, theFirstOfSeveralRedirectsToTheRedirectURICounts) {
    server->route("/auth/authorize", signInPage);
    showPage(ResponseMode::query);
    run(std::string("location.href = '") + callback + "?code=1'");
    ASSERT_TRUE(waitForEnding());
    run(std::string("location.href = '") + callback + "?code=2#code=3'");
    auto expected = linesOfPage(ResponseMode::query);
    expected.push_back(navigation("GET", std::string(callback) + "?code=1"));
    expected.emplace_back("captured keys=[\"code\"] code=1 state=-");
    expected.push_back(navigation("GET", std::string(callback) + "?code=2#code=3"));
    expected.emplace_back("captured keys=[\"code\"] code=3 state=-");
    expectLinesOnceQuiet(expected);
    expectResult(ResponseMode::query, {{"code", "1"}});
    EXPECT_EQ(server->count("/callback"), 0U);
}

TEST_F(SignInEndingTest, theAuthorizeURLItselfMayAnswerThroughSeveralRedirects) {
    server->route("/auth/authorize", HTTPResponse::redirect("https://idmsa.apple.com/one", 302));
    server->route("/one", HTTPResponse::redirect("https://appleid.apple.com/two", 303));
    server->route("/two", HTTPResponse::redirect(std::string(callback) + "?code=1", 302));
    start(ResponseMode::query);
    ASSERT_TRUE(waitForLine(redirectStopped));
    expectResult(ResponseMode::query, {{"code", "1"}});
    auto expected = linesOfPage(ResponseMode::query);
    expected.pop_back();
    expected.push_back(navigation("GET", "https://idmsa.apple.com/one"));
    expected.push_back(navigation("GET", "https://appleid.apple.com/two"));
    expected.push_back(navigation("GET", std::string(callback) + "?code=1"));
    expected.emplace_back("captured keys=[\"code\"] code=1 state=-");
    expected.emplace_back(redirectStopped);
    expectLines(expected);
}

TEST_F(SignInEndingTest, aPageThatClosesItsWindowCancels) {
    server->route("/auth/authorize", signInPage);
    for (const auto& origin : {std::optional<std::string>(), std::optional<std::string>(initiator)}) {
        results.clear();
        standardError.emplace();
        showPage(ResponseMode::formPost, origin);
        run("close()");
        ASSERT_TRUE(waitForEnding());
        EXPECT_FALSE(window()->isVisible());
        auto expected = linesOfPage(ResponseMode::formPost, origin);
        expected.emplace_back("webViewDidClose");
        expectLinesOnceQuiet(expected);
        expectError(HostError::cancelled());
    }
}

TEST_F(SignInEndingTest, closingTheWindowEndsNothingAndTheTimeoutDoes) {
    server->route("/auth/authorize", signInPage);
    showPage();
    TestSupport::closeNativeWindow(*window());
    EXPECT_FALSE(window()->isVisible());
    expectLinesOnceQuiet(linesOfPage(ResponseMode::formPost));
    EXPECT_EQ(results.size(), 0U);
    AuthSessionInspector::timeoutTimer(*session)->fire();
    expectError(HostError::timeout());
    expectLines(linesOfPage(ResponseMode::formPost));
}

TEST_F(SignInEndingTest, aServerThatNeverAnswersEndsItAfterTheRequestsTimeout) {
    server->route("/auth/authorize", held());
    session = makeSession();
    // The timeout must be long enough for WebKitGTK to start on a busy machine.
    AuthSessionInspector::setRequestTimeout(*session, 5);
    session->start();
    ASSERT_TRUE(waitForEnding());
    expectFailure("NSURLErrorDomain -1001");
    EXPECT_EQ(results.front().error().message(), "The request timed out.");
}

TEST_F(SignInEndingTest, theRequestsTimeoutIsNotForTheNavigationOfAnInitiatorsPage) {
    server->route("/auth/authorize", held());
    session = makeSession(ResponseMode::formPost, initiator);
    AuthSessionInspector::setRequestTimeout(*session, 0.1);
    session->start();
    ASSERT_TRUE(runUntil([&] { return server->count("/auth/authorize") == 1; }));
    EXPECT_FALSE(runUntil([&] { return !results.empty(); }, std::chrono::seconds(1)));
    AuthSessionInspector::timeoutTimer(*session)->fire();
    expectError(HostError::timeout());
    auto expected = linesOfPage(ResponseMode::formPost, initiator);
    expected.pop_back();
    expectLines(expected);
}

TEST_F(SignInEndingTest, aServerThatRefusesEndsIt) {
    tls.reset();
    start();
    ASSERT_TRUE(waitForEnding());
    expectFailure("NSURLErrorDomain -1004");
}

TEST_F(SignInEndingTest, aServerThatResetsTheHandshakeEndsIt) {
    tls.reset();
    tls.emplace(ProviderNetwork::current()->identity(), server->port(), TLSServer::Manner::resets);
    start();
    ASSERT_TRUE(waitForEnding());
    expectFailure("NSURLErrorDomain -1200");
}

TEST_F(SignInEndingTest, aServerThatHangsUpEndsIt) {
    server->route("/auth/authorize", signInPage.withEnding(HTTPResponse::Ending::dropped));
    start();
    ASSERT_TRUE(waitForEnding());
    expectFailure("NSURLErrorDomain -1005");
}

TEST_F(SignInEndingTest, aCertificateOfAnUnknownAuthorityEndsIt) {
    tls.reset();
    tls.emplace(ProviderNetwork::current()->strangersIdentity(), server->port());
    server->route("/auth/authorize", signInPage);
    start();
    ASSERT_TRUE(waitForEnding());
    expectFailure("NSURLErrorDomain -1202");
    EXPECT_EQ(server->count("/auth/authorize"), 0U);
}

TEST_F(SignInEndingTest, aCertificateOfAnotherHostEndsIt) {
    tls.reset();
    tls.emplace(ProviderNetwork::current()->otherHostsIdentity(), server->port());
    server->route("/auth/authorize", signInPage);
    start();
    ASSERT_TRUE(waitForEnding());
    expectFailure("NSURLErrorDomain -1202");
    EXPECT_EQ(server->count("/auth/authorize"), 0U);
}

TEST_F(SignInEndingTest, anErrorPageIsAPageLikeAnyOther) {
    auto unavailable = signInPage;
    unavailable.status = 503;
    server->route("/auth/authorize", unavailable);
    showPage();
    expectLinesOnceQuiet(linesOfPage(ResponseMode::formPost));
    EXPECT_EQ(results.size(), 0U);
}
