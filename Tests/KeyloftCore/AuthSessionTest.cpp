#include "Tests/KeyloftCore/AuthSessionTest.h"

#include "Platform/AppKit/Application.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/linux/MainLoop.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>

namespace TestSupport {

using Platform::NavigationAction;
using Platform::NavigationActionPolicy;
using Platform::URL;

namespace {

bool isSessionLine(const std::string& line) {
    constexpr auto beginnings = std::to_array<std::string_view>(
        {"loading ", "nav ", "blocked navigation to ", "form submit hooked ", "POST body ",
         "captured keys=", "didFinish ", "didFailProvisional ", "webViewDidClose"});
    return std::ranges::any_of(beginnings, [&line](auto beginning) { return line.starts_with(beginning); });
}

} // namespace

AuthSessionTest::AuthSessionTest() {
    proxy.route(connectTarget, HTTPResponse().withEnding(HTTPResponse::Ending::held));
    // All tests in this process share WebKitGTK's network process, which reads the proxy variables only once.
    // No server listens on port 9, so requests that a test does not redirect fail.
    for (const auto* variable : {"http_proxy", "https_proxy"}) {
        setenv(variable, "http://127.0.0.1:9", 1);
    }
    Platform::Application::shared().prepare();
    otherView = Platform::WebView::create(Platform::WebViewConfiguration::create());
}

AuthSessionTest::~AuthSessionTest() {
    if (HasFailure()) {
        for (const auto& line : everything()) {
            std::cout << "on standard error: " << line << '\n';
        }
    }
    // End the sessions that are still running, because their completion handlers refer to this object.
    for (const auto& weak : sessions_) {
        if (const auto session = weak.lock()) {
            session->webViewDidClose(*otherView);
        }
    }
    for (const auto& line : everything()) {
        EXPECT_EQ(line.find("CRITICAL"), std::string::npos) << line;
    }
}

URL AuthSessionTest::url(std::string_view text) { return present(URL::fromString(text)); }

std::string AuthSessionTest::authorizeURL(std::string_view rest) {
    return std::string(authorize) + "?redirect_uri=" + std::string(redirect) + std::string(rest);
}

AuthSessionTest::Session AuthSessionTest::makeSession(std::string_view rest) {
    auto session = KeyloftCore::AuthSession::create(
        {url(authorizeURL(rest)), "ABCDEFGHIJKLMNOPQRST-_"},
        [this](const KeyloftCore::AuthSession::Result& result) { endings.push_back(result); });
    sessions_.push_back(session);
    return session;
}

AuthSessionTest::Session AuthSessionTest::startSession(const std::optional<std::string>& initiatorOrigin) {
    auto session = makeSession();
    session->initiatorOrigin = initiatorOrigin;
    start(session);
    return session;
}

void AuthSessionTest::start(const Session& session) {
    session->start();
    // Redirecting the traffic after `start` is early enough. The page sends no request before the policy
    // decision, which is made in a later iteration of the main loop.
    TestSupport::redirectTraffic(*Inspector::webView(*session, Inspector::runCount(*session) - 1),
                                 proxy.port());
}

NavigationAction AuthSessionTest::get(std::string_view text) {
    NavigationAction action;
    action.url = url(text);
    action.method = "GET";
    return action;
}

std::vector<NavigationActionPolicy> AuthSessionTest::ask(const Session& session,
                                                         const NavigationAction& action) {
    std::vector<NavigationActionPolicy> answers;
    session->decidePolicy(*otherView, action,
                          [&answers](NavigationActionPolicy policy) { answers.push_back(policy); });
    return answers;
}

bool AuthSessionTest::showPage(const Session& session, const std::string& body) {
    const auto& view = Inspector::webView(*session);
    // WebKitGTK 2.50 may drop one of two loads that are started at the same time (not reported).
    view->stopLoading();
    if (!runUntil([&] { return !view->isLoading(); })) {
        return false;
    }
    const auto finished = [this] {
        return std::ranges::count(lines(), "didFinish https://appleid.apple.com/");
    };
    const auto before = finished();
    view->loadHTMLString("<!doctype html>" + body, url("https://appleid.apple.com/"));
    return runUntil([&] { return finished() > before; });
}

bool AuthSessionTest::waitForEnding() {
    const bool ended = runUntil([this] { return !endings.empty(); });
    TestSupport::runPending();
    return ended;
}

bool AuthSessionTest::waitForLine(const std::string& line) {
    return runUntil([&] { return std::ranges::count(lines(), line) > 0; });
}

const AuthSessionTest::Lines& AuthSessionTest::lines() {
    readError();
    return lines_;
}

const AuthSessionTest::Lines& AuthSessionTest::everything() {
    readError();
    return everything_;
}

void AuthSessionTest::readError() {
    for (const auto& message : error_.messages()) {
        everything_.push_back(message);
        if (isSessionLine(message)) {
            lines_.push_back(message);
        }
    }
}

} // namespace TestSupport
