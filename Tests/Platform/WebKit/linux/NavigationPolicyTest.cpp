#include "Tests/Platform/WebKit/linux/WebViewFixture.h"
#include "Tests/Support/Waiting.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

using namespace Platform;
using TestSupport::eventually;
using TestSupport::HTTPResponse;
using TestSupport::runPending;
using TestSupport::runUntil;

namespace {

/// A navigation delegate that records all calls. If `onQuestion` is set, it decides whether a navigation is
/// allowed. Otherwise, every navigation is allowed.
struct PolicyDelegate final : NavigationPolicyDelegate {
    void decidePolicy(WebView& /*webView*/, const NavigationAction& action,
                      const DecisionHandler& decisionHandler) override {
        actions.push_back(action);
        if (onQuestion) {
            onQuestion(action, decisionHandler);
        } else {
            decisionHandler(NavigationActionPolicy::allow);
        }
    }
    void didFinishNavigation(WebView& webView) override {
        finished.push_back(webView.url() ? webView.url()->absoluteString() : "");
    }
    void didFailProvisionalNavigation(WebView& /*webView*/, const Error& error) override {
        failures.push_back(error);
    }

    std::function<void(const NavigationAction&, const DecisionHandler&)> onQuestion;
    std::vector<NavigationAction> actions;
    std::vector<std::string> finished;
    std::vector<Error> failures;
};

class NavigationPolicy : public WebViewTest {
protected:
    NavigationPolicy() { view->setNavigationDelegate(delegate); }

    /// Cancels every navigation to `path` on the server and allows all others.
    void cancelOnly(const std::string& path) {
        delegate->onQuestion =
            [blocked = server.url(path)](const NavigationAction& action,
                                         const NavigationPolicyDelegate::DecisionHandler& decide) {
                decide(textOf(action.url).starts_with(blocked) ? NavigationActionPolicy::cancel
                                                               : NavigationActionPolicy::allow);
            };
    }
    bool waitForQuestions(std::size_t count) const {
        return runUntil([&] { return delegate->actions.size() >= count; });
    }
    std::string askedURL(std::size_t index) const { return textOf(delegate->actions.at(index).url); }

    std::shared_ptr<PolicyDelegate> delegate = std::make_shared<PolicyDelegate>();
    std::shared_ptr<WebView> view = WebView::create(WebViewConfiguration::create());
};

class HTMLString : public NavigationPolicy {
protected:
    HTMLString() {
        delegate->onQuestion = [](const NavigationAction&,
                                  const NavigationPolicyDelegate::DecisionHandler& decide) {
            decide(NavigationActionPolicy::cancel);
        };
    }
    static std::string page(const std::string& script) {
        return "<!doctype html><title>Own</title><script>" + script + "</script>";
    }
};

} // namespace

// Tests of the policy decisions that a navigation delegate makes.

TEST_F(NavigationPolicy, isAskedBeforeALoad) {
    ASSERT_TRUE(loadPage(*view, "/page"));
    ASSERT_EQ(delegate->actions.size(), 1U);
    EXPECT_EQ(askedURL(0), server.url("/page"));
    EXPECT_EQ(delegate->actions[0].method, "GET");
    EXPECT_EQ(delegate->actions[0].body, std::nullopt);
    EXPECT_EQ(delegate->actions[0].bodyStream, nullptr);
    EXPECT_EQ(delegate->actions[0].navigationType, NavigationType::other);
    EXPECT_TRUE(runUntil([&] { return delegate->finished == std::vector{server.url("/page")}; }));
}

TEST_F(NavigationPolicy, tellsWhatMadeThePageNavigate) {
    ASSERT_TRUE(loadPage(*view, "/one"));
    server.route("/two", HTTPResponse::page("/two"));
    run(*view, "document.body.innerHTML = '<a href=/two>a</a>'; document.links[0].click()");
    ASSERT_TRUE(waitForTitle(*view, "/two"));
    EXPECT_EQ(delegate->actions.back().navigationType, NavigationType::linkActivated);
    view->goBack();
    ASSERT_TRUE(waitForTitle(*view, "/one"));
    EXPECT_EQ(delegate->actions.back().navigationType, NavigationType::backForward);
    view->reload();
    ASSERT_TRUE(waitForQuestions(4));
    EXPECT_EQ(delegate->actions.back().navigationType, NavigationType::reload);
    ASSERT_TRUE(waitForTitle(*view, "/one"));
    run(*view, "document.body.innerHTML = '<form method=post action=/two>'; document.forms[0].submit()");
    ASSERT_TRUE(waitForTitle(*view, "/two"));
    EXPECT_EQ(delegate->actions.back().navigationType, NavigationType::formSubmitted);
    EXPECT_EQ(delegate->actions.back().method, "POST");
    view->reload();
    ASSERT_TRUE(waitForQuestions(6));
    EXPECT_EQ(delegate->actions.back().navigationType, NavigationType::formResubmitted);
}

TEST_F(NavigationPolicy, aCancelledLoadFailsNothing) {
    cancelOnly("/no");
    view->load(request(server.url("/no")));
    ASSERT_TRUE(waitForQuestions(1));
    EXPECT_TRUE(runUntil([&] { return !view->isLoading(); }));
    ASSERT_TRUE(loadPage(*view, "/page"));
    EXPECT_TRUE(delegate->failures.empty());
    EXPECT_EQ(server.count("/no"), 0U);
}

TEST_F(NavigationPolicy, aCancelledRedirectFailsTheLoad) {
    cancelOnly("/no");
    server.route("/redirect", HTTPResponse::redirect(server.url("/no")));
    bool isAnswered = false;
    const auto answer = delegate->onQuestion;
    delegate->onQuestion = [&, answer](const auto& action, const auto& decide) {
        answer(action, decide);
        isAnswered = delegate->actions.size() == 2;
        // The failure must not be reported before the decision handler returns.
        EXPECT_TRUE(delegate->failures.empty());
    };
    view->load(request(server.url("/redirect")));
    ASSERT_TRUE(runUntil([&] { return !delegate->failures.empty(); }));
    EXPECT_TRUE(isAnswered);
    EXPECT_EQ(askedURL(1), server.url("/no"));
    EXPECT_EQ(delegate->failures[0].domain, "WebKitErrorDomain");
    EXPECT_EQ(delegate->failures[0].code, 102);
    EXPECT_EQ(server.count("/no"), 0U);
    runPending();
    EXPECT_TRUE(delegate->finished.empty()) << "a failed load is not finished";
}

TEST_F(NavigationPolicy, framesAreAskedAboutToo) {
    cancelOnly("/no");
    server.route("/page", HTTPResponse::html("<title>Page</title><iframe src=/no></iframe>"));
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForTitle(*view, "Page"));
    ASSERT_TRUE(waitForQuestions(2));
    EXPECT_EQ(askedURL(1), server.url("/no"));
    EXPECT_EQ(server.count("/no"), 0U);
    EXPECT_TRUE(delegate->failures.empty());
}

TEST_F(NavigationPolicy, newWindowsOfLinksAreAskedAbout) {
    view->setUIDelegate(ui);
    cancelOnly("/no");
    ASSERT_TRUE(loadPage(*view, "/page"));
    run(*view, "document.body.innerHTML = '<a target=_blank href=/no>a</a>'; document.links[0].click()");
    ASSERT_TRUE(waitForQuestions(2));
    EXPECT_EQ(askedURL(1), server.url("/no"));
    EXPECT_EQ(delegate->actions[1].navigationType, NavigationType::linkActivated);
    ASSERT_TRUE(loadPage(*view, "/next"));
    EXPECT_TRUE(ui->windows.empty());
}

TEST_F(NavigationPolicy, theFirstAnswerCounts) {
    delegate->onQuestion = [](const auto&, const auto& decide) {
        decide(NavigationActionPolicy::allow);
        decide(NavigationActionPolicy::cancel);
    };
    EXPECT_TRUE(loadPage(*view, "/page"));
    delegate->onQuestion = [](const auto&, const auto& decide) {
        decide(NavigationActionPolicy::cancel);
        decide(NavigationActionPolicy::allow);
    };
    view->load(request(server.url("/other")));
    ASSERT_TRUE(waitForQuestions(2));
    EXPECT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_EQ(server.count("/other"), 0U);
}

TEST_F(NavigationPolicy, anAnswerMayComeLater) {
    NavigationPolicyDelegate::DecisionHandler kept;
    delegate->onQuestion = [&kept](const auto&, const auto& decide) { kept = decide; };
    server.route("/page", HTTPResponse::page("Page"));
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForQuestions(1));
    runPending();
    EXPECT_EQ(server.count("/page"), 0U);
    kept(NavigationActionPolicy::allow);
    EXPECT_TRUE(waitForTitle(*view, "Page"));
}

TEST_F(NavigationPolicy, anAnswerThatNeverComesIsNo) {
    NavigationPolicyDelegate::DecisionHandler kept;
    delegate->onQuestion = [&kept](const auto&, const auto& decide) { kept = decide; };
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForQuestions(1));
    EXPECT_TRUE(view->isLoading());
    kept = nullptr;
    EXPECT_TRUE(runUntil([&] { return !view->isLoading(); }));
    delegate->onQuestion = nullptr;
    EXPECT_TRUE(loadPage(*view, "/next"));
    EXPECT_EQ(server.count("/page"), 0U);
}

TEST_F(NavigationPolicy, anAnswerMayComeAfterTheView) {
    NavigationPolicyDelegate::DecisionHandler kept;
    delegate->onQuestion = [&kept](const auto&, const auto& decide) { kept = decide; };
    view->load(request(server.url("/page")));
    ASSERT_TRUE(waitForQuestions(1));
    view.reset();
    runPending();
    kept(NavigationActionPolicy::allow);
    runPending();
    EXPECT_EQ(server.count("/page"), 0U);
}

TEST_F(NavigationPolicy, theViewMayBeLetGoFromInsideTheQuestion) {
    for (const bool answers : {true, false}) {
        view = WebView::create(WebViewConfiguration::create());
        view->setNavigationDelegate(delegate);
        const std::weak_ptr<WebView> weak = view;
        delegate->onQuestion = [&](const auto&, const auto& decide) {
            view.reset();
            if (answers) {
                decide(NavigationActionPolicy::cancel);
            }
        };
        view->load(request(server.url("/page")));
        EXPECT_TRUE(runUntil([&] { return weak.expired(); }));
    }
}

TEST_F(NavigationPolicy, aDelegateThatIsGoneAllows) {
    delegate.reset();
    EXPECT_TRUE(loadPage(*view, "/page"));
}

TEST_F(NavigationPolicy, aRestrictedPortIsRefusedAfterwards) {
    view->load(request("http://127.0.0.1:1/"));
    ASSERT_TRUE(runUntil([&] { return !delegate->failures.empty(); }));
    EXPECT_EQ(delegate->actions.size(), 1U);
    EXPECT_EQ(delegate->failures[0].code, Error::webKitRestrictedPort);
    delegate->failures.clear();
    delegate->onQuestion = [](const auto&, const auto& decide) { decide(NavigationActionPolicy::cancel); };
    view->load(request("http://127.0.0.1:1/"));
    ASSERT_TRUE(waitForQuestions(2));
    EXPECT_TRUE(runUntil([&] { return !view->isLoading(); }));
    EXPECT_TRUE(delegate->failures.empty());
}

TEST_F(NavigationPolicy, onlyWholePagesAreFinished) {
    HTTPResponse unfinished = HTTPResponse::page("Half");
    unfinished.body += std::string(5000, 'x');
    unfinished.ending = HTTPResponse::Ending::unfinished;
    server.route("/half", unfinished);
    view->load(request(server.url("/half")));
    ASSERT_TRUE(runUntil([&] { return view->title() == "Half"; }));
    view->stopLoading();
    ASSERT_TRUE(runUntil([&] { return !view->isLoading(); }));
    ASSERT_TRUE(loadPage(*view, "/page"));
    EXPECT_TRUE(runUntil([&] { return !delegate->finished.empty(); }));
    EXPECT_EQ(delegate->finished, std::vector{server.url("/page")});
}

TEST_F(NavigationPolicy, aLoadTimesOutThoughTheOneBeforeHasNotBegun) {
    const auto held = HTTPResponse().withEnding(HTTPResponse::Ending::held);
    server.route("/first", held);
    server.route("/second", held);
    ASSERT_TRUE(loadPage(*view, "/before"));
    view->load(request(server.url("/first"), 30));
    ASSERT_TRUE(waitForQuestions(2));
    // Wait for the request without running the main loop, so that the view is not yet notified that the load
    // has started.
    ASSERT_TRUE(eventually([&] { return server.count("/first") == 1; }));
    view->load(request(server.url("/second"), 2));
    ASSERT_TRUE(runUntil([&] { return delegate->failures.size() == 2; }));
    EXPECT_EQ(delegate->failures[0].code, Error::urlCancelled);
    EXPECT_EQ(delegate->failures[0].failingURL, server.url("/first"));
    EXPECT_EQ(delegate->failures[1].code, Error::urlTimedOut);
    EXPECT_EQ(delegate->failures[1].failingURL, server.url("/second"));
}

// Tests of pages that the program supplies with `loadHTMLString`.

TEST_F(HTMLString, passesWithoutAQuestion) {
    view->loadHTMLString(page(""), URL::fromString("https://Client.example"));
    ASSERT_TRUE(waitForTitle(*view, "Own"));
    EXPECT_TRUE(delegate->actions.empty());
    EXPECT_EQ(evaluate(*view, "origin"), "https://client.example");
    EXPECT_EQ(delegate->finished, std::vector<std::string>{"https://client.example/"});
}

TEST_F(HTMLString, hasNoOriginWithoutABase) {
    view->loadHTMLString(page(""), std::nullopt);
    ASSERT_TRUE(waitForTitle(*view, "Own"));
    EXPECT_TRUE(delegate->actions.empty());
    EXPECT_EQ(evaluate(*view, "origin"), "null");
}

TEST_F(HTMLString, takesABaseThatIsARelativeReference) {
    view->loadHTMLString(page(""), URL::fromString("not a url"));
    ASSERT_TRUE(waitForTitle(*view, "Own"));
    EXPECT_TRUE(delegate->actions.empty());
}

TEST_F(HTMLString, isAskedWhereItGoesNext) {
    const auto target = server.url("/target");
    view->loadHTMLString(page("location.href = '" + target + "'"), URL::fromString("https://client.example"));
    ASSERT_TRUE(waitForQuestions(1));
    EXPECT_EQ(askedURL(0), target);
    runFor(0.05);
    EXPECT_EQ(server.count("/target"), 0U);
}

TEST_F(HTMLString, isAskedWhenItGoesToItsOwnBase) {
    view->loadHTMLString(page(""), URL::fromString("https://client.example"));
    ASSERT_TRUE(waitForTitle(*view, "Own"));
    for (const std::string place : {"https://client.example/", "about:blank"}) {
        const auto before = delegate->actions.size();
        run(*view, "location.href = '" + place + "'");
        ASSERT_TRUE(waitForQuestions(before + 1));
        EXPECT_EQ(textOf(delegate->actions.back().url), place);
    }
}

TEST_F(HTMLString, itsFramesAreAskedAbout) {
    view->loadHTMLString(page("document.write('<iframe src=https://client.example/>')"),
                         URL::fromString("https://client.example"));
    ASSERT_TRUE(waitForQuestions(1));
    EXPECT_EQ(askedURL(0), "https://client.example/");
}

TEST_F(HTMLString, anotherLoadTakesThePassAway) {
    view->loadHTMLString(page(""), URL::fromString(server.url("/page")));
    view->load(request(server.url("/page")));
    ASSERT_TRUE(runUntil([&] {
        return std::ranges::count(delegate->actions, server.url("/page"),
                                  [](auto& a) { return textOf(a.url); }) > 0;
    }));
    runFor(0.05);
    EXPECT_EQ(server.count("/page"), 0U);
}

TEST_F(HTMLString, eachOneHasAPassOfItsOwn) {
    for (int turn = 0; turn < 3; ++turn) {
        view->loadHTMLString("<title>" + std::to_string(turn) + "</title>",
                             URL::fromString("https://client.example"));
        ASSERT_TRUE(waitForTitle(*view, std::to_string(turn)));
    }
    EXPECT_TRUE(delegate->actions.empty());
}
