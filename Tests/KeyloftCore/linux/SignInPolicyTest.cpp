// Tests which navigations a session allows.

#include "Platform/WebKit/WebView.h"
#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/NativeWindow.h"

using KeyloftCore::HostError;
using KeyloftCore::ResponseMode;
using TestSupport::HTTPResponse;

namespace {

class SignInPolicyTest : public SignInTest {
protected:
    /// A navigation that the page attempts, and the log lines that it causes.
    struct Attempt {
        std::string name;
        std::string script;
        Lines lines;
    };

    static std::vector<Attempt> attempts() {
        const auto to = [](const std::string& url) { return "location.href = '" + url + "'"; };
        const auto inFrame = [](const std::string& url) {
            return "document.body.innerHTML = '<iframe src=\"" + url + "\"></iframe>'";
        };
        const auto blocked = [](const std::string& url, const std::string& host) {
            return Lines{navigation("GET", url), "blocked navigation to " + host};
        };
        return {
            {"another host", to("https://other.example/"),
             blocked("https://other.example/", "other.example")},
            {"the client's own host", to("https://client.example/elsewhere"),
             blocked("https://client.example/elsewhere", "client.example")},
            {"the bare parent domain", to("https://apple.com/"), blocked("https://apple.com/", "apple.com")},
            {"the bare delivery domain", to("https://cdn-apple.com/"),
             blocked("https://cdn-apple.com/", "cdn-apple.com")},
            {"a host with the same ending", to("https://evilapple.com/"),
             blocked("https://evilapple.com/", "evilapple.com")},
            {"an empty page", to("about:blank"), blocked("about:blank", "?")},
            {"another scheme", to("keyloft-test:anything"), blocked("keyloft-test:anything", "?")},
            {"a page of data", to("data:text/html,data"), blocked("data:text/html,data", "?")},
            {"an empty frame", inFrame("about:blank"), blocked("about:blank", "?")},
            {"a frame of data", inFrame("data:text/html,data"), blocked("data:text/html,data", "?")},
            {"a frame of another host", inFrame("https://other.example/"),
             blocked("https://other.example/", "other.example")},
            {"a window by a link",
             "document.body.innerHTML = '<a target=_blank href=https://other.example/>x</a>'; "
             "document.links[0].click()",
             {navigation("GET", "https://other.example/", 0), "blocked navigation to other.example"}},
            {"a window by a form",
             "document.body.innerHTML = '<form method=post target=_blank action=https://other.example/>'; "
             "document.forms[0].requestSubmit()",
             {"form submit hooked → https://other.example/ keys=[]",
              navigation("POST", "https://other.example/", 1), "blocked navigation to other.example"}},
        };
    }
};

} // namespace

TEST_F(SignInPolicyTest, aPageMayGoNowhereElseAndTheSignInStaysAsItIs) {
    server->route("/auth/authorize", HTTPResponse::html("<!DOCTYPE html><title>Sign in</title><p>Sign in"));
    server->route("/", HTTPResponse::page("Elsewhere"));
    for (const auto& attempt : attempts()) {
        SCOPED_TRACE(attempt.name);
        standardError.emplace();
        showPage();
        run(attempt.script);

        auto expected = linesOfPage(ResponseMode::formPost);
        expected.insert(expected.end(), attempt.lines.begin(), attempt.lines.end());
        expectLinesOnceQuiet(expected);
        EXPECT_EQ(results.size(), 0U);
        EXPECT_EQ(webView()->title(), "Sign in");
    }
    EXPECT_EQ(server->count("/"), 0U);
    EXPECT_EQ(server->count("/elsewhere"), 0U);
}

TEST_F(SignInPolicyTest, thePagesOfTheProvidersOtherHostsAreShown) {
    server->route("/auth/authorize", HTTPResponse::html("<!DOCTYPE html><title>Sign in</title><iframe "
                                                        "src=https://appleid.cdn-apple.com/frame></iframe>"));
    server->route("/frame", HTTPResponse::page("Frame"));
    server->route("/next", HTTPResponse::page("Next"));
    showPage();
    run("location.href = 'https://idmsa.apple.com/next'");
    ASSERT_TRUE(waitForLine(finished("https://idmsa.apple.com/next")));
    auto expected = linesOfPage(ResponseMode::formPost);
    expected.insert(expected.end() - 1, navigation("GET", "https://appleid.cdn-apple.com/frame"));
    expected.push_back(navigation("GET", "https://idmsa.apple.com/next"));
    expected.push_back(finished("https://idmsa.apple.com/next"));
    expectLinesOnceQuiet(expected);
    EXPECT_EQ(server->requests("/frame").at(0).headers.at("host"), "appleid.cdn-apple.com");
    EXPECT_TRUE(waitForTitle("Next"));
}

TEST_F(SignInPolicyTest, noWindowOpensEvenForTheProvider) {
    server->route("/auth/authorize", HTTPResponse::html("<!DOCTYPE html><title>Sign in</title><p>Sign in"));
    server->route("/next", HTTPResponse::page("Next"));
    showPage();
    run("document.title = 'A window: ' + open('https://idmsa.apple.com/next')");
    EXPECT_TRUE(waitForTitle("A window: null"));
    run("document.body.innerHTML = '<a target=_blank href=https://idmsa.apple.com/next>x</a>'; "
        "document.links[0].click()");
    auto expected = linesOfPage(ResponseMode::formPost);
    expected.push_back(navigation("GET", "https://idmsa.apple.com/next", 0));
    expectLinesOnceQuiet(expected);
    EXPECT_EQ(server->count("/next"), 0U);
    EXPECT_EQ(results.size(), 0U);
}

TEST_F(SignInPolicyTest, aRedirectAwayFromTheProviderEndsTheSignIn) {
    server->route("/auth/authorize", HTTPResponse::redirect("https://other.example/"));
    server->route("/", HTTPResponse::page("Elsewhere"));
    start();
    ASSERT_TRUE(waitForEnding());
    expectError(HostError::internalError("Frame load interrupted"));
    auto expected = linesOfPage(ResponseMode::formPost);
    expected.pop_back();
    expected.push_back(navigation("GET", "https://other.example/"));
    expected.emplace_back("blocked navigation to other.example");
    expected.emplace_back(redirectStopped);
    expectLinesOnceQuiet(expected);
    EXPECT_EQ(server->count("/"), 0U);
}

TEST_F(SignInPolicyTest, aFramesRedirectAwayFromTheProviderEndsNothing) {
    server->route("/auth/authorize",
                  HTTPResponse::html("<!DOCTYPE html><title>Sign in</title><iframe src=/frame></iframe>"));
    server->route("/frame", HTTPResponse::redirect("https://other.example/"));
    server->route("/", HTTPResponse::page("Elsewhere"));
    showPage();
    EXPECT_EQ(results.size(), 0U);
    auto expected = linesOfPage(ResponseMode::formPost);
    expected.insert(expected.end() - 1,
                    {navigation("GET", "https://appleid.apple.com/frame"),
                     navigation("GET", "https://other.example/"), "blocked navigation to other.example"});
    expectLinesOnceQuiet(expected);
    EXPECT_EQ(server->count("/"), 0U);
}
