// Tests the ways in which the provider can respond, both with and without an initiator.

#include "Platform/AppKit/Window.h"
#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/NativeWindow.h"

#include <functional>

using KeyloftCore::ResponseMode;
using TestSupport::HTTPResponse;

namespace {

constexpr auto formCode = "c0123456789.provider's code";
constexpr auto urlCode = "c0123456789.provider+s+code";
/// The part of a log line that contains the abbreviated code and state. It is the same for `formCode` and
/// `urlCode`.
constexpr auto shownValues = " code=c0123456…(27) state=state-of…(20)";

/// URL of the second page of the provider's sign-in.
constexpr auto next = "https://appleid.apple.com/auth/continue";

/// A form whose only button fills the page and has the keyboard focus.
std::string form(const std::string& action, const std::string& attributes = "") {
    return "<form method=post action='" + action + "' " + attributes +
           "><input type=hidden name=code value=\"" + formCode +
           "\"><input type=hidden name=state value=state-of-the-request>"
           "<input type=hidden name=user value='{\"name\": \"Zoë\"}'>"
           "<button autofocus style='position: fixed; inset: 0; width: 100%; height: 100%'>Continue</button>"
           "</form>";
}

class SignInAnswerTest : public SignInTest {
protected:
    /// A way in which the provider can respond.
    struct Answer {
        std::string name;
        ResponseMode mode = ResponseMode::formPost;
        /// The body of the sign-in page, and the response to requests for `next`.
        std::string page;
        HTTPResponse continuation;
        /// Called after the page has loaded. Triggers the response with a script or with user input.
        std::function<void()> act;
        Params params;
        /// Log lines written before the page has finished loading, and log lines caused by `act`.
        Lines linesOfFrames;
        Lines lines;
    };

    std::function<void()> script(const std::string& text) const {
        return [this, text] { run(text); };
    }

    static Lines linesOfPost() {
        return {hooked(callback), navigation("POST", callback, 1),
                std::string("POST body missing; using hooked form fields for ") + callback, capturedForm()};
    }
    static std::string hooked(const std::string& action) {
        return "form submit hooked → " + action + R"( keys=["code", "state", "user"])";
    }
    static std::string capturedForm() {
        return std::string(R"(captured keys=["code", "state", "user"])") + shownValues;
    }

    /// The provider responds with a page whose form is submitted to the redirect URI.
    Answer byForm(const std::string& name, std::function<void()> act) const {
        return {.name = name,
                .mode = ResponseMode::formPost,
                .page = form(callback),
                .continuation = {},
                .act = std::move(act),
                .params = formParams(),
                .linesOfFrames = {},
                .lines = linesOfPost()};
    }

    /// Like `byForm`, but the form is in a frame.
    Answer byFrame(const std::string& name, const std::string& attributes) const {
        auto answer = byForm(name, script("frames[0].document.forms[0].requestSubmit()"));
        answer.page = "<iframe src=/auth/continue></iframe>";
        answer.continuation = HTTPResponse::html(form(callback, attributes));
        answer.linesOfFrames = {navigation("GET", next)};
        return answer;
    }

    /// The provider responds with a page whose form is submitted to the provider. The provider then redirects
    /// with status 307, which preserves the method and the form data.
    Answer byPassedOnForm() const {
        auto answer = byForm("a form passed on by 307", script("document.forms[0].requestSubmit()"));
        answer.page = form("/auth/continue");
        answer.continuation = HTTPResponse::redirect(callback, 307);
        answer.lines = {hooked(next),
                        navigation("POST", next, 1),
                        navigation("POST", callback, 1),
                        std::string("POST body missing; using hooked form fields for ") + next,
                        capturedForm(),
                        redirectStopped};
        return answer;
    }

    /// The script `step` navigates to the provider, which redirects to the redirect URI with the parameters
    /// after `separator`. `linesOfStep` are the log lines that the script itself causes.
    Answer byRedirect(const std::string& name, ResponseMode mode, char separator, int status,
                      const std::string& step, const Lines& linesOfStep, int type) const {
        const auto location = std::string(callback) + separator + "code=" + urlCode + "&state=" + state;
        auto lines = linesOfStep;
        lines.push_back(navigation("GET", location, type));
        lines.push_back(std::string(R"(captured keys=["code", "state"])") + shownValues);
        lines.emplace_back(redirectStopped);
        return {.name = name,
                .mode = mode,
                .page = form("/auth/continue"),
                .continuation = HTTPResponse::redirect(location, status),
                .act = script(step),
                .params = {{"code", urlCode}, {"state", state}},
                .linesOfFrames = {},
                .lines = lines};
    }

    std::vector<Answer> answers() const {
        constexpr auto submit = "document.forms[0].requestSubmit()";
        constexpr auto go = "location.href = '/auth/continue'";
        const Lines submitted{hooked(next), navigation("POST", next, 1)};
        const Lines gone{navigation("GET", next)};
        return {
            byForm("a click", [this] { click(); }),
            byForm("the Return key", [this] { pressReturn(); }),
            byForm("requestSubmit()", script(submit)),
            byForm("submit()", script("document.forms[0].submit()")),
            byFrame("a form in a frame", ""),
            byFrame("a frame's form for the whole window", "target=_top"),
            byPassedOnForm(),
            byRedirect("a query by 302", ResponseMode::query, '?', 302, go, gone, -1),
            byRedirect("a query by 303", ResponseMode::query, '?', 303, submit, submitted, 1),
            byRedirect("a fragment by 302", ResponseMode::fragment, '#', 302, go, gone, -1),
            byRedirect("a fragment by 303", ResponseMode::fragment, '#', 303, submit, submitted, 1),
        };
    }

    void expectAnswersAreCaptured(const std::optional<std::string>& origin) {
        for (const auto& answer : answers()) {
            SCOPED_TRACE(answer.name);
            results.clear();
            standardError.emplace();
            server->route("/auth/authorize",
                          HTTPResponse::html("<!DOCTYPE html><title>Sign in</title>" + answer.page));
            server->route("/auth/continue", answer.continuation);
            showPage(answer.mode, origin);
            EXPECT_TRUE(window()->isVisible());

            answer.act();
            ASSERT_TRUE(waitForEnding());
            EXPECT_FALSE(window()->isVisible());
            auto expected = linesOfPage(answer.mode, origin);
            expected.insert(expected.end() - 1, answer.linesOfFrames.begin(), answer.linesOfFrames.end());
            expected.insert(expected.end(), answer.lines.begin(), answer.lines.end());
            expectLinesOnceQuiet(expected);
            expectResult(answer.mode, answer.params);
            const auto asked = server->requests("/auth/authorize").back();
            EXPECT_EQ(asked.headers.at("host"), "appleid.apple.com");
            EXPECT_EQ(asked.headers.contains("referer"), origin.has_value());
        }
        EXPECT_EQ(server->count("/callback"), 0U);
    }

    /// Inserts `control` into the provider's form, submits the form to the redirect URI, and waits until the
    /// session has ended.
    void answerWithControl(const std::string& control) {
        results.clear();
        standardError.emplace();
        auto page = form(callback);
        page.insert(page.rfind("</form>"), control);
        server->route("/auth/authorize", HTTPResponse::html("<!DOCTYPE html><title>Sign in</title>" + page));
        showPage();
        run("document.forms[0].requestSubmit()");
        ASSERT_TRUE(waitForEnding());
    }

    static Params formParams() {
        return {{"code", formCode}, {"state", state}, {"user", "{\"name\": \"Zoë\"}"}};
    }

private:
    void click() const {
        TestSupport::activate(*window());
        TestSupport::click(*webView());
    }

    void pressReturn() const {
        TestSupport::activate(*window());
        TestSupport::pressKey("Return");
    }
};

} // namespace

TEST_F(SignInAnswerTest, isCapturedOnceAndNeverLoaded) { expectAnswersAreCaptured(std::nullopt); }

TEST_F(SignInAnswerTest, toAnInitiatorIsCapturedOnceAndNeverLoaded) { expectAnswersAreCaptured(initiator); }

// A form control that has the name of a form property hides this property from scripts. See docs/session.md.
TEST_F(SignInAnswerTest, ofAFormWithAControlNamedActionOrMethodHasNoParameters) {
    for (const std::string name : {"action", "method"}) {
        SCOPED_TRACE(name);
        answerWithControl("<input type=hidden name=" + name + " value=x>");
        auto expected = linesOfPage(ResponseMode::formPost);
        expected.push_back(navigation("POST", callback, 1));
        expected.emplace_back("POST body missing and no hooked form");
        expected.emplace_back("captured keys=[] code=- state=-");
        expectLinesOnceQuiet(expected);
        expectResult(ResponseMode::formPost, {});
    }
}

TEST_F(SignInAnswerTest, ofAFormWithAFileHasTheFilesTypeInItsPlace) {
    answerWithControl("<input type=file name=picture>");
    auto params = formParams();
    params.emplace("picture", "[object File]");
    expectResult(ResponseMode::formPost, params);
}
