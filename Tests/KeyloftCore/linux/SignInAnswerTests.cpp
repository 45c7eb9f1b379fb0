// How the provider may answer, each way with and without a page that asked for the sign-in.

#include "Platform/AppKit/Window.h"
#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/NativeWindow.h"

#include <algorithm>

using KeyloftCore::ResponseMode;
using TestSupport::HTTPRequest;
using TestSupport::HTTPResponse;
using TestSupport::HTTPServer;

namespace {

constexpr auto code = "c0123456789.provider's code";
constexpr auto answerInURL = "code=c0123456789.provider+s+code&state=state-of-the-request";

/// A form whose one button fills the page and has the keyboard.
std::string form(const std::string& action, const std::string& attributes = "") {
    return "<form method=post action='" + action + "' " + attributes +
           "><input type=hidden name=code value=\"" + code +
           "\"><input type=hidden name=state value=state-of-the-request>"
           "<input type=hidden name=user value='{\"name\": \"Zoë\"}'>"
           "<button autofocus style='position: fixed; inset: 0; width: 100%; height: 100%'>Continue</button>"
           "</form>";
}

/// One way to answer.
struct Answer {
    std::string name;
    ResponseMode mode = ResponseMode::formPost;
    /// What the sign-in page holds.
    std::string page;
    /// What is at "/auth/continue".
    HTTPResponse next;
    /// What a script of the page does once it is there, or what a person does.
    std::string script;
    enum class Person { waits, clicks, pressesReturn } person = Person::waits;
    std::map<std::string, std::string> params;
    /// What is told between the page's begin and its end, and from there on.
    std::vector<std::string> linesOfFrames;
    std::vector<std::string> lines;
};

class SignInAnswerTest : public SignInTest, public testing::WithParamInterface<std::tuple<Answer, bool>> {
public:
    static std::vector<Answer> answers() {
        const Params inURL{{"code", "c0123456789.provider+s+code"}, {"state", state}};
        const Params inForm{{"code", code}, {"state", state}, {"user", "{\"name\": \"Zoë\"}"}};
        const std::string next = "https://appleid.apple.com/auth/continue";
        const std::string hooked = "form submit hooked → ";
        const std::string keysOfForm = " keys=[\"code\", \"state\", \"user\"]";
        const std::string missing = "POST body missing; using hooked form fields for ";
        const std::string values = " code=c0123456…(27) state=state-of…(20)";
        const std::string captured = "captured keys=[\"code\", \"state\"]" + values;
        const std::string capturedForm = "captured keys=[\"code\", \"state\", \"user\"]" + values;
        const Lines posted{hooked + callback + keysOfForm, navigation("POST", callback, 1),
                           missing + callback, capturedForm};
        const auto byForm = [&](const std::string& name, const std::string& script, Answer::Person person) {
            return Answer{.name = name,
                          .mode = ResponseMode::formPost,
                          .page = form(callback),
                          .next = {},
                          .script = script,
                          .person = person,
                          .params = inForm,
                          .linesOfFrames = {},
                          .lines = posted};
        };
        std::vector<Answer> answers{byForm("a click", "", Answer::Person::clicks),
                                    byForm("the Return key", "", Answer::Person::pressesReturn),
                                    byForm("requestSubmit()", "document.forms[0].requestSubmit()", {}),
                                    byForm("submit()", "document.forms[0].submit()", {})};

        const std::string frame = "https://appleid.apple.com/auth/continue";
        auto inFrame = byForm("a form in a frame", "frames[0].document.forms[0].requestSubmit()", {});
        inFrame.page = "<iframe src=/auth/continue></iframe>";
        inFrame.next = HTTPResponse::html(form(callback));
        inFrame.linesOfFrames = {navigation("GET", frame)};
        answers.push_back(inFrame);
        auto fromFrame = inFrame;
        fromFrame.name = "a frame's form for the whole window";
        fromFrame.next = HTTPResponse::html(form(callback, "target=_top"));
        answers.push_back(fromFrame);

        answers.push_back(
            {.name = "a form passed on by 307",
             .mode = ResponseMode::formPost,
             .page = form("/auth/continue"),
             .next = HTTPResponse::redirect(callback, 307),
             .script = "document.forms[0].requestSubmit()",
             .person = {},
             .params = inForm,
             .linesOfFrames = {},
             .lines = {hooked + next + keysOfForm, navigation("POST", next, 1),
                       navigation("POST", callback, 1), missing + next, capturedForm, redirectStopped}});
        answers.push_back(
            {.name = "a query by 302",
             .mode = ResponseMode::query,
             .page = "<p>Sign in",
             .next = HTTPResponse::redirect(std::string(callback) + "?" + answerInURL, 302),
             .script = "location.href = '/auth/continue'",
             .person = {},
             .params = inURL,
             .linesOfFrames = {},
             .lines = {navigation("GET", next), navigation("GET", std::string(callback) + "?" + answerInURL),
                       captured, redirectStopped}});
        answers.push_back({.name = "a query by 303",
                           .mode = ResponseMode::query,
                           .page = form("/auth/continue"),
                           .next = HTTPResponse::redirect(std::string(callback) + "?" + answerInURL, 303),
                           .script = "document.forms[0].requestSubmit()",
                           .person = {},
                           .params = inURL,
                           .linesOfFrames = {},
                           .lines = {hooked + next + keysOfForm, navigation("POST", next, 1),
                                     navigation("GET", std::string(callback) + "?" + answerInURL, 1),
                                     captured, redirectStopped}});
        answers.push_back(
            {.name = "a fragment",
             .mode = ResponseMode::fragment,
             .page = "<p>Sign in",
             .next = HTTPResponse::redirect(std::string(callback) + "#" + answerInURL, 302),
             .script = "location.href = '/auth/continue'",
             .person = {},
             .params = inURL,
             .linesOfFrames = {},
             .lines = {navigation("GET", next), navigation("GET", std::string(callback) + "#" + answerInURL),
                       captured, redirectStopped}});
        return answers;
    }

    void act(const Answer& answer) const {
        switch (answer.person) {
        case Answer::Person::waits:
            run(answer.script);
            break;
        case Answer::Person::clicks:
            TestSupport::activate(*window());
            TestSupport::click(*webView());
            break;
        case Answer::Person::pressesReturn:
            TestSupport::activate(*window());
            TestSupport::pressKey("Return");
            break;
        }
    }

    /// Each answer is captured once, told of as it should be, and never loaded.
    void expectAnswers(const std::optional<std::string>& origin) {
        for (const auto& answer : answers()) {
            SCOPED_TRACE(answer.name);
            results.clear();
            standardError.emplace();
            server->route("/auth/authorize",
                          HTTPResponse::html("<!DOCTYPE html><title>Sign in</title>" + answer.page));
            server->route("/auth/continue", answer.next);
            showPage(answer.mode, origin);
            EXPECT_TRUE(window()->isVisible());

            act(answer);
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
};

} // namespace

TEST_F(SignInAnswerTest, isCapturedOnceAndNeverLoaded) { expectAnswers(std::nullopt); }

TEST_F(SignInAnswerTest, toAnInitiatorIsCapturedOnceAndNeverLoaded) { expectAnswers(initiator); }
