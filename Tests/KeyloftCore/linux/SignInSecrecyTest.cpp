// Tests that a sign-in leaves no data in WebKitGTK's data stores and files, and that the log contains only
// the documented prefixes of its secrets.

#include "Platform/WebKit/WebView.h"
#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/linux/MainLoop.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

using namespace KeyloftCore;
using TestSupport::HTTPRequest;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

class SignInSecrecyTest : public SignInTest {
protected:
    /// Returns a route for a page that stores `marker` in a cookie and in local storage. The page's title and
    /// form contain the values that an earlier page has stored. The form's action is the redirect URI.
    static auto keepingPage(const std::string& marker) {
        return [marker](const HTTPRequest& request) {
            const auto cookie = request.headers.find("cookie");
            const std::string cookies = cookie == request.headers.end() ? "none" : cookie->second;
            auto response = HTTPResponse::html(
                "<!DOCTYPE html><form method=post action=" + std::string(callback) +
                "><input name=cookies value='" + cookies +
                "'><input name=stored></form><script>"
                "const field = document.forms[0].stored; field.value = localStorage.kept; "
                "localStorage.kept = 'stored-" +
                marker +
                "'; "
                "document.title = document.forms[0].cookies.value + ' and ' + field.value</script>");
            response.headers.emplace_back("Set-Cookie", "kept=cookie-" + marker + "; Max-Age=10000; Secure");
            return response;
        };
    }

    /// Returns true if a file in the user's directories contains `text` in its path, or in its contents with
    /// one or two bytes per character.
    static bool isOnDisk(const std::string& text) {
        std::string wide;
        for (const char character : text) {
            wide.append({character, '\0'});
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 TestSupport::sessionDirectory(),
                 std::filesystem::directory_options::skip_permission_denied)) {
            std::error_code gone;
            if (!entry.is_regular_file(gone)) {
                continue;
            }
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string contents(std::istreambuf_iterator<char>(file), {});
            if (contents.contains(text) || contents.contains(wide) || entry.path().string().contains(text)) {
                return true;
            }
        }
        return false;
    }

    /// The captured standard error output without the lines that log the beginning of a URL, which may
    /// contain a part of a secret.
    std::string textWithoutURLs() const {
        std::string rest;
        std::istringstream text(standardError->text());
        for (std::string line; std::getline(text, line);) {
            if (!line.starts_with("nav ") && !line.starts_with("loading ") &&
                !line.starts_with("didFinish ")) {
                rest += line + "\n";
            }
        }
        return rest;
    }

    void answerByForm() {
        run("document.forms[0].requestSubmit()");
        ASSERT_TRUE(waitForEnding());
    }
};

} // namespace

TEST_F(SignInSecrecyTest, nothingThatAPageKeepsOutlivesItsSession) {
    server->route("/auth/authorize", keepingPage("of-a-session"));
    showPage();
    run("location.reload()");
    ASSERT_TRUE(waitForTitle("kept=cookie-of-a-session and stored-of-a-session"));
    answerByForm();
    expectResult(ResponseMode::formPost,
                 {{"cookies", "kept=cookie-of-a-session"}, {"stored", "stored-of-a-session"}});

    const auto first = session;
    for (const auto& previous : {first, std::shared_ptr<AuthSession>()}) {
        SCOPED_TRACE(previous ? "beside the first session" : "after it");
        results.clear();
        standardError.emplace();
        showPage();
        answerByForm();
        expectResult(ResponseMode::formPost, {{"cookies", "none"}, {"stored", "undefined"}});
    }

    session.reset();
    const auto browser = Platform::WebView::create(Platform::WebViewConfiguration::create());
    server->route("/auth/authorize", keepingPage("of-the-browser"));
    browser->load({.url = request(ResponseMode::formPost).url()});
    EXPECT_TRUE(runUntil([&] { return browser->title() == "none and undefined"; }));
    // Verify that `isOnDisk` finds the data that a browser view stores.
    EXPECT_TRUE(runUntil([] { return isOnDisk("cookie-of-the-browser"); }));
    EXPECT_TRUE(runUntil([] { return isOnDisk("stored-of-the-browser"); }));
    EXPECT_FALSE(isOnDisk("cookie-of-a-session"));
    EXPECT_FALSE(isOnDisk("stored-of-a-session"));
}

TEST_F(SignInSecrecyTest, ofAFormNoSecretIsToldInWhole) {
    server->route("/auth/authorize",
                  HTTPResponse::html("<!DOCTYPE html><title>Sign in</title><form method=post action=" +
                                     std::string(callback) +
                                     "><input name=code value=code-of-the-provider><input name=state value=" +
                                     state + "><input name=id_token value=token.of.the.provider></form>"));
    showPage();
    answerByForm();
    expectResult(ResponseMode::formPost,
                 {{"code", "code-of-the-provider"}, {"state", state}, {"id_token", "token.of.the.provider"}});
    const auto text = standardError->text();
    EXPECT_TRUE(text.contains("code=code-of-…(20) state=state-of…(20)")) << "the result was not logged";
    for (const char* secret : {"code-of-the-provider", "token.of.the.provider", state}) {
        EXPECT_FALSE(text.contains(secret)) << secret;
    }
}

TEST_F(SignInSecrecyTest, ofAnAnswerInTheURLOnlyTheURLsBeginningsTell) {
    server->route(
        "/auth/authorize",
        HTTPResponse::redirect(std::string(callback) + "?code=code-of-the-provider&state=" + state +
                               "&id_token=token.of.the.provider.that.goes.on.beyond.all.that.is.shown"));
    start(ResponseMode::query);
    ASSERT_TRUE(waitForLine(redirectStopped));
    const auto text = standardError->text();
    EXPECT_FALSE(text.contains("token.of.the.provider.that.goes.on.beyond.all.that.is.shown"));
    const auto rest = textWithoutURLs();
    EXPECT_TRUE(rest.contains("code=code-of-…(20) state=state-of…(20)")) << "the result was not logged";
    for (const char* secret : {"code-of-the-provider", "token.of", state}) {
        EXPECT_FALSE(rest.contains(secret)) << secret;
    }
}
