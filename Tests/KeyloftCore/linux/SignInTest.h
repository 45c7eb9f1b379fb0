#pragma once

#include "KeyloftCore/AuthSession.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/ProviderNetwork.h"
#include "Tests/Support/StandardError.h"
#include "Tests/Support/TLSServer.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Sign-ins in WebKitGTK at the provider's real host name. One server of the test answers for all hosts.
class SignInTest : public testing::Test {
public:
    SignInTest(const SignInTest&) = delete;
    SignInTest& operator=(const SignInTest&) = delete;
    ~SignInTest() override = default;

protected:
    using Lines = std::vector<std::string>;
    using Params = std::map<std::string, std::string>;

    static constexpr auto callback = "https://client.example/callback";
    static constexpr auto initiator = "https://client.example";
    static constexpr auto state = "state-of-the-request";

    SignInTest() = default;
    void SetUp() override;
    void TearDown() override;

    /// The authorize URL. Its secrets come after the part that log lines show.
    static std::string authorizeURL(KeyloftCore::ResponseMode mode);
    static KeyloftCore::AuthorizeRequest request(KeyloftCore::ResponseMode mode);

    /// Makes a session whose endings go to `results`.
    std::shared_ptr<KeyloftCore::AuthSession>
    makeSession(KeyloftCore::ResponseMode mode = KeyloftCore::ResponseMode::formPost,
                const std::optional<std::string>& initiatorOrigin = std::nullopt);
    /// Makes `session` and starts it.
    void start(KeyloftCore::ResponseMode mode = KeyloftCore::ResponseMode::formPost,
               const std::optional<std::string>& initiatorOrigin = std::nullopt);
    /// The same, and waits until the provider's page has loaded.
    void showPage(KeyloftCore::ResponseMode mode = KeyloftCore::ResponseMode::formPost,
                  const std::optional<std::string>& initiatorOrigin = std::nullopt);

    const std::shared_ptr<Platform::WebView>& webView() const;
    const std::shared_ptr<Platform::Window>& window() const;

    /// Runs a script in the session's page and does not wait.
    void run(const std::string& script) const;

    [[nodiscard]] bool waitForEnding() const;
    [[nodiscard]] bool waitForLine(const std::string& line) const;
    [[nodiscard]] bool waitForTitle(const std::string& title) const;

    /// The lines that sessions have logged to standard error.
    Lines lines() const;
    /// Expects exactly these log lines. Waits for the last of them.
    void expectLines(const Lines& expected) const;
    /// The same, and expects that no line follows.
    void expectLinesOnceQuiet(const Lines& expected) const;

    /// The lines of a session that shows the provider's page.
    static Lines linesOfPage(KeyloftCore::ResponseMode mode,
                             const std::optional<std::string>& initiatorOrigin = std::nullopt);
    static std::string navigation(std::string_view method, std::string_view url, int type = -1);
    static std::string finished(std::string_view url);
    /// The log line that follows a stopped redirect.
    static constexpr auto redirectStopped = "didFailProvisional WebKitErrorDomain 102 Frame load interrupted";

    /// Expects exactly one ending: a result with these parameters for a request of this mode.
    void expectResult(KeyloftCore::ResponseMode mode, const Params& params) const;
    /// Expects exactly one ending: this error.
    void expectError(const KeyloftCore::HostError& error) const;

    std::optional<TestSupport::HTTPServer> server;
    std::optional<TestSupport::TLSServer> tls;
    std::shared_ptr<KeyloftCore::AuthSession> session;
    std::vector<KeyloftCore::AuthSession::Result> results;
    std::optional<TestSupport::StandardError> standardError;

private:
    std::vector<std::weak_ptr<KeyloftCore::AuthSession>> sessions_;
};
