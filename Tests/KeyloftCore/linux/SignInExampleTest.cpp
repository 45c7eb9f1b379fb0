// Tests the example program auth-session by running it as a user would.

#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/AccessibilityTree.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/linux/MainLoop.h"
#include "Tests/Support/linux/Xdotool.h"

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>

using KeyloftCore::ResponseMode;
using TestSupport::askXdotool;
using TestSupport::HTTPResponse;
using TestSupport::patience;
using TestSupport::runUntil;

namespace {

struct Outcome {
    int status = -1;
    std::string output;
    std::string error;
};

class SignInExampleTest : public SignInTest {
protected:
    Outcome runExample(const std::string& arguments) const {
        const std::string command =
            std::string(KEYLOFT_SIGN_IN_EXAMPLE) + " " + arguments + " 2>" + (directory_ / "error");
        Outcome run;
        std::FILE* output = ::popen(command.c_str(), "re");
        std::array<char, 4096> buffer{};
        for (std::size_t size = 0; (size = std::fread(buffer.data(), 1, buffer.size(), output)) > 0;) {
            run.output.append(buffer.data(), size);
        }
        const int status = ::pclose(output);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.error = TestSupport::contentsOf(directory_ / "error");
        return run;
    }

    static std::string quoted(const std::string& text) { return "'" + text + "'"; }

    /// Serves a sign-in page that runs `script` when it has loaded.
    void routePage(const std::string& page, const std::string& script) {
        server->route("/auth/authorize",
                      HTTPResponse::html("<!DOCTYPE html><title>Sign in</title>" + page +
                                         "<script>addEventListener('load', () => " + script + ")</script>"));
    }

    /// Opens the Edit menu, which is the second menu, and presses `keys`. The menu opens with a delay,
    /// because the page receives F10 before the menu bar. F10 is pressed several times if necessary, because
    /// key presses are lost while the window does not have the keyboard focus.
    [[nodiscard]] static bool chooseFromEditMenu(const TestSupport::Program& program,
                                                 const std::string& keys) {
        const auto isOpen = [&program] {
            return std::ranges::any_of(TestSupport::accessibleObjects(program.id()), [](const auto& object) {
                return object.isFocused && object.name == "Close Window";
            });
        };
        bool opened = false;
        for (int attempt = 0; attempt < 5 && !opened; ++attempt) {
            askXdotool("key F10");
            opened = runUntil(isOpen, patience / 5);
        }
        // GTK 4.8.3 closes the open menu if two arrow keys are pressed within a few milliseconds of each
        // other (not reported).
        askXdotool("key --delay 250 Right " + keys);
        return opened;
    }

private:
    TestSupport::TemporaryDirectory directory_;
};

} // namespace

TEST_F(SignInExampleTest, printsTheResultAsJSON) {
    routePage("<form method=post action=" + std::string(callback) +
                  "><input name=code value=1><input name=user value='{\"name\": \"Zoë\"}'></form>",
              "document.forms[0].requestSubmit()");
    const auto run = runExample(quoted(authorizeURL(ResponseMode::formPost)) + " " + initiator);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.output,
              "{\"params\":{\"code\":\"1\",\"user\":\"{\\\"name\\\": \\\"Zoë\\\"}\"},"
              "\"redirectURI\":\"https://client.example/callback\",\"responseMode\":\"form_post\"}\n");
    EXPECT_TRUE(run.error.contains(navigation("POST", callback, 1))) << run.error;
}

TEST_F(SignInExampleTest, pastesFromItsMenuIntoThePage) {
    routePage("<input id=from value=pasted><form method=post action=" + std::string(callback) +
                  "><input name=code></form>",
              "{ const from = document.getElementById('from'), form = document.forms[0];"
              "from.select(); fetch('/selected');"
              "from.addEventListener('copy', () => setTimeout(() => {"
              "form.code.focus(); fetch('/copied') }));"
              "form.code.addEventListener('input', () => form.requestSubmit()) }");
    TestSupport::Program program(KEYLOFT_SIGN_IN_EXAMPLE, {authorizeURL(ResponseMode::formPost), initiator});
    ASSERT_TRUE(runUntil([&] { return server->count("/selected") == 1; }, patience)) << program.errors();
    askXdotool("search --onlyvisible --name '^Keyloft$' windowactivate");
    ASSERT_TRUE(chooseFromEditMenu(program, "Down Down Down Return")); // Copy
    ASSERT_TRUE(runUntil([&] { return server->count("/copied") == 1; }, patience)) << program.errors();
    ASSERT_TRUE(chooseFromEditMenu(program, "Down Down Down Down Return")); // Paste
    const auto line = program.nextLine();
    ASSERT_TRUE(line) << program.errors();
    EXPECT_TRUE(line->contains("\"code\":\"pasted\"")) << *line;
    EXPECT_EQ(program.waitForExit(), 0);
}

TEST_F(SignInExampleTest, tellsWhyThereIsNoResult) {
    routePage("", "close()");
    const auto run = runExample(quoted(authorizeURL(ResponseMode::query)));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(run.error.contains("auth-session: cancelled: user cancelled\n")) << run.error;
    const auto other = runExample("https://other.example/");
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(other.error, "auth-session: bad_request: not an appleid.apple.com/auth/authorize URL\n");
}
