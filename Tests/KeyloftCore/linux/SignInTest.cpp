#include "Tests/KeyloftCore/linux/SignInTest.h"

#include "Platform/AppKit/Application.h"
#include "Platform/WebKit/WebView.h"
#include "Tests/KeyloftCore/AuthSessionInspector.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/linux/MainLoop.h"

#include <algorithm>
#include <array>
#include <sstream>

using namespace KeyloftCore;
using TestSupport::ProviderNetwork;
using TestSupport::runUntil;

namespace {

/// Prefixes of the lines that sessions log. Tests ignore all other lines, which GTK and the processes of
/// WebKitGTK write to standard error.
constexpr auto beginnings = std::to_array<std::string_view>(
    {"loading ", "nav ", "blocked navigation to ", "didFinish ", "didFailProvisional ", "webViewDidClose",
     "form submit hooked ", "POST body ", "captured "});

constexpr std::chrono::seconds patience(60);

/// A URL to which sessions block navigation. Tests navigate to it last, so that all earlier lines are in the
/// log when the blocked navigation is logged.
constexpr auto farewell = "https://farewell.example/";
constexpr auto farewellBlocked = "blocked navigation to farewell.example";

} // namespace

void SignInTest::SetUp() {
    const auto* network = ProviderNetwork::current();
    if (!network) {
        GTEST_SKIP() << "this system does not allow a network namespace";
    }
    Platform::Application::shared().prepare();
    server.emplace();
    tls.emplace(network->identity(), server->port());
    standardError.emplace();
}

void SignInTest::TearDown() {
    // End the sessions that are still running, because their completion handlers refer to this test.
    for (const auto& made : sessions_) {
        if (const auto running = made.lock(); running && AuthSessionInspector::runCount(*running) > 0) {
            AuthSessionInspector::timeoutTimer(*running)->fire();
        }
    }
    session.reset();
    TestSupport::runPending();
}

std::string SignInTest::authorizeURL(ResponseMode mode) {
    return "https://appleid.apple.com/auth/"
           "authorize?client_id=com.example.client.of.the.provider&redirect_uri="
           "https%3A%2F%2Fclient.example%2Fcallback&response_type=code&response_mode=" +
           std::string(rawValue(mode)) + "&state=" + state;
}

AuthorizeRequest SignInTest::request(ResponseMode mode) {
    return {TestSupport::present(Platform::URL::fromString(authorizeURL(mode))), "ABCDEFGHIJKLMNOPQRST-_"};
}

std::shared_ptr<AuthSession> SignInTest::makeSession(ResponseMode mode,
                                                     const std::optional<std::string>& initiatorOrigin) {
    auto made = AuthSession::create(request(mode),
                                    [this](const AuthSession::Result& result) { results.push_back(result); });
    made->initiatorOrigin = initiatorOrigin;
    sessions_.push_back(made);
    return made;
}

void SignInTest::start(ResponseMode mode, const std::optional<std::string>& initiatorOrigin) {
    session = makeSession(mode, initiatorOrigin);
    session->start();
}

void SignInTest::showPage(ResponseMode mode, const std::optional<std::string>& initiatorOrigin) {
    start(mode, initiatorOrigin);
    ASSERT_TRUE(waitForLine(finished(authorizeURL(mode))));
}

const std::shared_ptr<Platform::WebView>& SignInTest::webView() const {
    return AuthSessionInspector::webView(*session);
}

const std::shared_ptr<Platform::Window>& SignInTest::window() const {
    return AuthSessionInspector::window(*session);
}

void SignInTest::run(const std::string& script) const { TestSupport::runScript(*webView(), script); }

bool SignInTest::waitForEnding() const {
    return runUntil([this] { return !results.empty(); }, patience);
}

bool SignInTest::waitForLine(const std::string& line) const {
    return runUntil([&] { return standardError->text().contains(line + "\n"); }, patience);
}

bool SignInTest::waitForTitle(const std::string& title) const {
    return runUntil([&] { return webView()->title() == title; }, patience);
}

SignInTest::Lines SignInTest::lines() const {
    Lines lines;
    std::istringstream text(standardError->text());
    for (std::string line; std::getline(text, line);) {
        if (line == navigation("GET", farewell) || line == farewellBlocked) {
            continue;
        }
        if (std::ranges::any_of(beginnings, [&](auto beginning) { return line.starts_with(beginning); })) {
            lines.push_back(line);
        }
    }
    return lines;
}

void SignInTest::expectLinesOnceQuiet(const Lines& expected) const {
    EXPECT_TRUE(waitForLine(expected.back()));
    // Set the location in a timer callback. Setting it immediately would replace a navigation that the page
    // has started but WebKitGTK has not reported yet.
    run(std::string("setTimeout(() => { location.href = '") + farewell + "' })");
    EXPECT_TRUE(waitForLine(farewellBlocked));
    expectLines(expected);
}

void SignInTest::expectLines(const Lines& expected) const {
    EXPECT_TRUE(waitForLine(expected.back()));
    const auto text = [](const Lines& lines) {
        std::string text;
        for (const auto& line : lines) {
            text += line + "\n";
        }
        return text;
    };
    EXPECT_EQ(text(lines()), text(expected));
}

SignInTest::Lines SignInTest::linesOfPage(ResponseMode mode,
                                          const std::optional<std::string>& initiatorOrigin) {
    const auto url = authorizeURL(mode);
    Lines lines{"loading " + url.substr(0, 120) + "… mode=" + std::string(rawValue(mode)) +
                " initiator=" + initiatorOrigin.value_or("none")};
    if (initiatorOrigin) {
        lines.push_back(finished(*initiatorOrigin + "/"));
    }
    lines.push_back(navigation("GET", url));
    lines.push_back(finished(url));
    return lines;
}

std::string SignInTest::navigation(std::string_view method, std::string_view url, int type) {
    std::ostringstream line;
    line << "nav " << method << ' ' << url.substr(0, 100) << " body=-1 stream=false type=" << type;
    return line.str();
}

std::string SignInTest::finished(std::string_view url) {
    return "didFinish " + std::string(url.substr(0, 100));
}

void SignInTest::expectResult(ResponseMode mode, const Params& params) const {
    ASSERT_EQ(results.size(), 1U);
    ASSERT_TRUE(results.front().has_value()) << results.front().error().message();
    const AuthResult expected{.responseMode = mode,
                              .redirectURI = TestSupport::present(Platform::URL::fromString(callback)),
                              .params = params};
    EXPECT_EQ(results.front()->params, expected.params);
    EXPECT_EQ(*results.front(), expected);
}

void SignInTest::expectError(const HostError& error) const {
    ASSERT_EQ(results.size(), 1U);
    ASSERT_FALSE(results.front().has_value());
    EXPECT_EQ(results.front().error().kind(), error.kind());
    EXPECT_EQ(results.front().error().message(), error.message());
}
