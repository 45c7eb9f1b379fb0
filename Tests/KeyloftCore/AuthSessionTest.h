#pragma once

#include "KeyloftCore/AuthSession.h"
#include "Tests/KeyloftCore/AuthSessionInspector.h"
#include "Tests/Support/CapturedError.h"
#include "Tests/Support/HTTPServer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TestSupport {

/// Fixture for sessions whose pages cannot reach the network. Requests of the pages are sent to `proxy`,
/// which does not respond to connections to the provider unless a test adds a route.
class AuthSessionTest : public testing::Test {
public:
    AuthSessionTest(const AuthSessionTest&) = delete;
    AuthSessionTest& operator=(const AuthSessionTest&) = delete;
    ~AuthSessionTest() override;

protected:
    using Session = std::shared_ptr<KeyloftCore::AuthSession>;
    using Inspector = KeyloftCore::AuthSessionInspector;
    using Lines = std::vector<std::string>;

    static constexpr std::string_view authorize = "https://appleid.apple.com/auth/authorize";
    static constexpr std::string_view redirect = "https://client.example/cb";
    /// Target of the first request that the proxy receives: a CONNECT request for the provider.
    static constexpr const char* connectTarget = "appleid.apple.com:443";

    AuthSessionTest();

    static Platform::URL url(std::string_view text);
    /// The authorize URL with the redirect URI, followed by `rest`.
    static std::string authorizeURL(std::string_view rest = "");

    /// Creates a session whose completion handler appends the result to `endings`.
    Session makeSession(std::string_view rest = "");
    Session startSession(const std::optional<std::string>& initiatorOrigin = std::nullopt);
    /// Starts the session and redirects its traffic to the proxy. Can be called several times for one
    /// session.
    void start(const Session& session);

    static Platform::NavigationAction get(std::string_view url);
    /// Requests the session's policy decision on `action` and returns all decisions that the session reports.
    std::vector<Platform::NavigationActionPolicy> ask(const Session& session,
                                                      const Platform::NavigationAction& action);

    /// Loads a page with the provider's origin in the session's view and waits until it has loaded.
    [[nodiscard]] bool showPage(const Session& session, const std::string& body);
    /// Waits until a session has ended, then runs the main loop until no event source is ready.
    [[nodiscard]] bool waitForEnding();
    /// Waits until `line` has been logged.
    [[nodiscard]] bool waitForLine(const std::string& line);

    /// Lines that sessions have logged so far.
    const Lines& lines();
    /// All lines written to standard error so far.
    const Lines& everything();

    /// The result or the error of the session that ended first.
    const KeyloftCore::AuthResult& result() const { return endings.at(0).value(); }
    const KeyloftCore::HostError& error() const { return endings.at(0).error(); }

    HTTPServer proxy;
    std::vector<KeyloftCore::AuthSession::Result> endings;
    /// The view that tests pass to delegate methods. Sessions ignore it.
    std::shared_ptr<Platform::WebView> otherView;

private:
    void readError();

    CapturedError error_;
    std::vector<std::weak_ptr<KeyloftCore::AuthSession>> sessions_;
    Lines everything_;
    Lines lines_;
};

} // namespace TestSupport
