// Measures the time from the start of a sign-in until the provider's page is displayed, and compares it with
// the time that a bare web view takes to display the same page.
//
// Sessions and bare web views alternate in one process. They load the page over TLS in a private network in
// which the provider's host names resolve to this machine. Each run has its own data store and web process.
// The comparison is made twice: with the authorize URL loaded directly, and with an initiator's page that
// navigates to it. The provider's page counts as displayed when its second animation frame begins. Prints
// medians, quartiles and the ratio of the medians.

#include "KeyloftCore/AuthSession.h"
#include "KeyloftCore/RedirectCapture.h"
#include "Platform/AppKit/Application.h"
#include "Platform/Foundation/RunLoop.h"
#include "Platform/Foundation/Timer.h"
#include "Tests/KeyloftCore/AuthSessionInspector.h"
#include "Tests/Support/BareWebView.h"
#include "Tests/Support/Display.h"
#include "Tests/Support/HTTPServer.h"
#include "Tests/Support/Present.h"
#include "Tests/Support/ProviderNetwork.h"
#include "Tests/Support/TLSServer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace KeyloftCore;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
using Platform::RunLoop;
using TestSupport::HTTPRequest;
using TestSupport::HTTPResponse;

constexpr int warmUps = 3;
constexpr int rounds = 40;
constexpr Platform::Timer::Interval pause = 0.3;

constexpr auto initiator = "https://client.example";
constexpr auto authorizeURL =
    "https://appleid.apple.com/auth/authorize?client_id=com.example.client&redirect_uri="
    "https%3A%2F%2Fclient.example%2Fcallback&response_type=code&response_mode=form_post&state=state";

constexpr auto signInPage =
    "<!DOCTYPE html><title>Sign in</title><style>body { font: 15px sans-serif; margin: 3em; text-align: "
    "center }"
    "input, button { display: block; width: 100%; margin: 1em 0; padding: .7em; box-sizing: border-box "
    "}</style>"
    "<h1>Sign in</h1><form method=post action=https://client.example/callback><input name=account "
    "placeholder=Account><input name=password type=password "
    "placeholder=Password><button>Continue</button></form>"
    "<script>requestAnimationFrame(() => requestAnimationFrame(() => fetch('/shown', { method: 'POST' })))"
    "</script>";

AuthorizeRequest authorizeRequest() {
    return {TestSupport::present(Platform::URL::fromString(authorizeURL)), "ABCDEFGHIJKLMNOPQRST-_"};
}

/// A provider that records when its page is displayed.
class Provider {
public:
    Provider()
        : tls_(TestSupport::ProviderNetwork::current()->identity(), server_.port()) {
        server_.route("/auth/authorize", HTTPResponse::html(signInPage));
        server_.route("/shown", [this](const HTTPRequest&) {
            shown_ = Clock::now();
            RunLoop::main().perform([] { RunLoop::main().stop(); });
            return HTTPResponse::html("");
        });
    }

    /// Calls `open` and returns the time until the page is displayed, in milliseconds.
    double measure(const std::function<void()>& open) {
        const auto begun = Clock::now();
        open();
        RunLoop::main().run();
        return Milliseconds(shown_ - begun).count();
    }

private:
    TestSupport::HTTPServer server_;
    TestSupport::TLSServer tls_;
    Clock::time_point shown_; // written before the main loop stops, read afterwards
};

/// Gives the web engine time to finish work from the previous measurement.
void rest() {
    const auto timer = Platform::Timer::scheduled(pause, false, [] { RunLoop::main().stop(); });
    RunLoop::main().run();
}

double measureSession(Provider& provider, const std::optional<std::string>& origin) {
    const auto session = AuthSession::create(authorizeRequest(), [](const AuthSession::Result&) {});
    session->initiatorOrigin = origin;
    const auto time = provider.measure([&] { session->start(); });
    AuthSessionInspector::timeoutTimer(*session)->fire();
    return time;
}

double measureBareView(Provider& provider, const std::optional<std::string>& origin) {
    std::unique_ptr<TestSupport::BareWebView> view;
    return provider.measure([&] {
        view = std::make_unique<TestSupport::BareWebView>(520, 360);
        if (origin) {
            view->loadHTMLString(RedirectCapture::bootstrapPage(authorizeRequest().url()), *origin);
        } else {
            view->load(authorizeURL);
        }
    });
}

/// Prints the median and the quartiles of `times`. Returns the median.
double report(const char* name, std::vector<double> times) {
    std::ranges::sort(times);
    const auto at = [&](std::size_t quarters) { return times.at((times.size() - 1) * quarters / 4); };
    std::printf("  %-16s %6.1f ms  (%.1f to %.1f)\n", name, at(2), at(1), at(3));
    return at(2);
}

void compare(Provider& provider, const char* title, const std::optional<std::string>& origin) {
    std::vector<double> sessions;
    std::vector<double> bareViews;
    for (int round = -warmUps; round < rounds; ++round) {
        const auto session = measureSession(provider, origin);
        rest();
        const auto bareView = measureBareView(provider, origin);
        rest();
        if (round >= 0) {
            sessions.push_back(session);
            bareViews.push_back(bareView);
        }
    }
    std::printf("%s\n", title);
    const auto session = report("session", sessions);
    const auto bareView = report("bare web view", bareViews);
    std::printf("  ratio            %6.2f\n", session / bareView);
}

} // namespace

int main(int argc, char** argv) {
    try {
        TestSupport::ProviderNetwork::enter({argv, argv + argc});
        if (TestSupport::ProviderNetwork::current() == nullptr) {
            std::fputs("This system does not allow a network namespace. Run the benchmark as root.\n",
                       stderr);
            return EXIT_FAILURE;
        }
        TestSupport::beginDisplaySession();
        Platform::Application::shared().prepare();
        Provider provider;
        compare(provider, "From start to the provider's page", std::nullopt);
        compare(provider, "The same from an initiator's page", initiator);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
