// Tests that the page's report of a submitted form always arrives before the form's navigation. WebKitGTK
// delivers the report and the navigation independently of each other.

#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/linux/MainLoop.h"

#include <array>

using namespace KeyloftCore;
using TestSupport::HTTPRequest;
using TestSupport::HTTPResponse;
using TestSupport::runUntil;

namespace {

/// Returns a code that is short enough to be logged in full.
std::string code(int number) { return "code " + std::to_string(number); }

constexpr auto submissions = std::to_array<std::string_view>(
    {"form.requestSubmit()", "form.submit()", "form.querySelector('button').click()"});

class SignInRepetitionTest : public SignInTest {
protected:
    static std::string form(const std::string& code) {
        return "<!DOCTYPE html><title>Sign in</title><form method=post action=" + std::string(callback) +
               "><input name=code value='" + code + "'><button>Continue</button></form>";
    }
};

} // namespace

TEST_F(SignInRepetitionTest, eachFormOfAPageIsCapturedWithItsOwnFields) {
    server->route("/auth/authorize", HTTPResponse::html(form("none") + "<iframe src=/frame></iframe>"));
    server->route("/frame", HTTPResponse::html(form("none")));
    showPage();
    for (int number = 0; number < 200; ++number) {
        run("{ const form = " + std::string(number % 2 == 0 ? "document" : "frames[0].document") +
            ".forms[0]; form.code.value = '" + code(number) + "'; " +
            std::string(submissions.at(number % submissions.size())) + " }");
        ASSERT_TRUE(waitForLine("captured keys=[\"code\"] code=" + code(number) + " state=-"));
    }
    expectResult(ResponseMode::formPost, {{"code", code(0)}});
}

TEST_F(SignInRepetitionTest, eachOfManySignInsGetsItsOwnFields) {
    constexpr int atOnce = 5;
    int pages = 0;
    server->route("/auth/authorize", [&pages](const HTTPRequest&) {
        // The script submits the form while the page is still loading.
        const int number = pages++;
        return HTTPResponse::html(form(code(number)) + "<script>const form = document.forms[0]; " +
                                  std::string(submissions.at(number % submissions.size())) + "</script>");
    });
    std::set<std::string> codes;
    for (int number = 0; number < KEYLOFT_SIGN_INS; number += atOnce) {
        results.clear();
        for (int beside = 0; beside < atOnce; ++beside) {
            start();
        }
        ASSERT_TRUE(runUntil([&] { return results.size() == atOnce; }, std::chrono::minutes(1)));
        for (const auto& result : results) {
            ASSERT_TRUE(result.has_value());
            ASSERT_EQ(result->params.size(), 1U);
            codes.insert(result->params.at("code"));
        }
    }
    EXPECT_EQ(codes.size(), KEYLOFT_SIGN_INS);
}
