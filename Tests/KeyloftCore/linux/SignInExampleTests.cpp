// The example program as somebody would run it.

#include "Tests/KeyloftCore/linux/SignInTest.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>

using KeyloftCore::ResponseMode;
using TestSupport::HTTPResponse;

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
        for (std::size_t size = 0; (size = std::fread(buffer.data(), 1, buffer.size(), output)) > 0;)
            run.output.append(buffer.data(), size);
        const int status = ::pclose(output);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        run.error = KeyloftTests::contentsOf(directory_ / "error");
        return run;
    }

    static std::string quoted(const std::string& text) { return "'" + text + "'"; }

    /// A sign-in page that goes on by itself once it is there.
    void routePage(const std::string& page, const std::string& script) {
        server->route("/auth/authorize",
                      HTTPResponse::html("<!DOCTYPE html><title>Sign in</title>" + page +
                                         "<script>addEventListener('load', () => " + script + ")</script>"));
    }

private:
    KeyloftTests::TemporaryDirectory directory_;
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
