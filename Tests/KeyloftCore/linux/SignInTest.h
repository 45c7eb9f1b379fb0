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

/// Fixture for sign-ins in WebKitGTK that use the provider's real host name. A single test server handles the
/// requests to all hosts.
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

    /// The URL of the authorization request. Log lines truncate the URL before its secrets.
    static std::string authorizeURL(KeyloftCore::ResponseMode mode);
    static KeyloftCore::AuthorizeRequest request(KeyloftCore::ResponseMode mode);

    /// Creates a session that appends its result to `results` when it ends.
    std::shared_ptr<KeyloftCore::AuthSession>
    makeSession(KeyloftCore::ResponseMode mode = KeyloftCore::ResponseMode::formPost,
                const std::optional<std::string>& initiatorOrigin = std::nullopt);
    /// Creates `session` and starts it.
    void start(KeyloftCore::ResponseMode mode = KeyloftCore::ResponseMode::formPost,
               const std::optional<std::string>& initiatorOrigin = std::nullopt);
    /// Like `start`, but also waits until the provider's page has loaded.
    void showPage(KeyloftCore::ResponseMode mode = KeyloftCore::ResponseMode::formPost,
                  const std::optional<std::string>& initiatorOrigin = std::nullopt);

    const std::shared_ptr<Platform::WebView>& webView() const;
    const std::shared_ptr<Platform::Window>& window() const;

    /// Starts a script in the session's page, and does not wait for its completion.
    void run(const std::string& script) const;

    [[nodiscard]] bool waitForEnding() const;
    [[nodiscard]] bool waitForLine(const std::string& line) const;
    [[nodiscard]] bool waitForTitle(const std::string& title) const;

    /// Lines that sessions have logged to standard error.
    Lines lines() const;
    /// Waits until the last line of `expected` has been logged, then expects that sessions have logged
    /// exactly the lines in `expected`.
    void expectLines(const Lines& expected) const;
    /// Like `expectLines`, but also expects that no further line is logged afterwards.
    void expectLinesOnceQuiet(const Lines& expected) const;

    /// Log lines that a session writes until the provider's page has loaded.
    static Lines linesOfPage(KeyloftCore::ResponseMode mode,
                             const std::optional<std::string>& initiatorOrigin = std::nullopt);
    static std::string navigation(std::string_view method, std::string_view url, int type = -1);
    static std::string finished(std::string_view url);
    /// Log line for the failure that WebKitGTK reports after the session has cancelled a redirect.
    static constexpr auto redirectStopped = "didFailProvisional WebKitErrorDomain 102 Frame load interrupted";

    /// Expects that exactly one session has ended, with a result that has this response mode and these
    /// parameters.
    void expectResult(KeyloftCore::ResponseMode mode, const Params& params) const;
    /// Expects that exactly one session has ended, with this error.
    void expectError(const KeyloftCore::HostError& error) const;

    std::optional<TestSupport::HTTPServer> server;
    std::optional<TestSupport::TLSServer> tls;
    std::shared_ptr<KeyloftCore::AuthSession> session;
    std::vector<KeyloftCore::AuthSession::Result> results;
    std::optional<TestSupport::StandardError> standardError;

private:
    std::vector<std::weak_ptr<KeyloftCore::AuthSession>> sessions_;
};
