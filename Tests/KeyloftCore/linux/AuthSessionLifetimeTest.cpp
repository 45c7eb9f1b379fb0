// Tests the ownership of sessions, and that sessions do not leak resources.

#include "Platform/AppKit/linux/ApplicationNative.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Tests/KeyloftCore/AuthSessionTest.h"
#include "Tests/Support/NativeWindow.h"
#include "Tests/Support/ProcessCounts.h"
#include "Tests/Support/Waiting.h"
#include "Tests/Support/WebProcesses.h"
#include "Tests/Support/linux/MainLoop.h"

#include <webkit/webkit.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace TestSupport {

using KeyloftCore::AuthSession;

namespace {

class AuthSessionLifetime : public AuthSessionTest {
protected:
    /// Observes the finalization of a view's native widget, without holding a reference to it.
    class WatchedWidget {
    public:
        explicit WatchedWidget(Platform::View& view)
            : widget_(view.native().widget.get()) {
            g_object_add_weak_pointer(G_OBJECT(widget_), &widget_);
        }
        WatchedWidget(const WatchedWidget&) = delete;
        WatchedWidget& operator=(const WatchedWidget&) = delete;
        ~WatchedWidget() {
            if (widget_) {
                g_object_remove_weak_pointer(G_OBJECT(widget_), &widget_);
            }
        }
        bool isGone() const { return widget_ == nullptr; }

    private:
        gpointer widget_;
    };

    static std::size_t nativeWindows() {
        GListModel* toplevels = gtk_window_get_toplevels();
        return g_list_model_get_n_items(toplevels);
    }
};

} // namespace

TEST_F(AuthSessionLifetime, untilTheCompletionASessionHoldsItself) {
    const std::weak_ptr<AuthSession> weak = startSession();
    std::weak_ptr<Platform::Window> window;
    std::weak_ptr<Platform::WebView> view;
    std::unique_ptr<WatchedWidget> widget;
    {
        const auto session = weak.lock();
        ASSERT_NE(session, nullptr);
        window = Inspector::window(*session);
        view = Inspector::webView(*session);
        widget = std::make_unique<WatchedWidget>(*view.lock());
        ASSERT_TRUE(runUntil([&] { return window.lock()->isVisible(); }));
        ASSERT_TRUE(showPage(session, ""));
    }
    EXPECT_FALSE(weak.expired());

    runScript(*view.lock(), "location.href = 'https://client.example/cb?code=a'");
    ASSERT_TRUE(waitForEnding());
    EXPECT_TRUE(endings[0].has_value());
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(window.expired());
    EXPECT_TRUE(view.expired());
    EXPECT_TRUE(runUntil([&] { return widget->isGone() && nativeWindows() == 0; }));
}

TEST_F(AuthSessionLifetime, afterTheCompletionItsCreatorHoldsIt) {
    auto session = startSession();
    const std::weak_ptr<AuthSession> weak = session;
    const auto view = Inspector::webView(*session);
    const WatchedWidget widget(*view);
    ASSERT_TRUE(showPage(session, ""));
    runScript(*view, "location.href = 'https://client.example/cb?code=a'");
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(weak.use_count(), 1);

    // After the completion, the page is still loaded and can still navigate.
    EXPECT_FALSE(Inspector::window(*session)->isVisible());
    runScript(*view, "location.href = 'https://client.example/cb?code=b'");
    ASSERT_TRUE(waitForLine(R"(captured keys=["code"] code=b state=-)"));
    EXPECT_EQ(endings.size(), 1U);
    EXPECT_FALSE(widget.isGone());

    session.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(runUntil([] { return nativeWindows() == 0; }));
}

TEST_F(AuthSessionLifetime, theCompletionMayLetTheSessionGo) {
    for (const bool byPage : {true, false}) {
        Session session;
        bool ended = false;
        session = AuthSession::create({url(authorizeURL()), "nonce"}, [&](const AuthSession::Result&) {
            ended = true;
            session.reset();
        });
        const std::weak_ptr<AuthSession> weak = session;
        start(session);
        ASSERT_TRUE(showPage(session, ""));
        if (byPage) {
            runScript(*Inspector::webView(*session), "window.close()");
        } else {
            Inspector::timeoutTimer(*session)->fire();
        }
        EXPECT_TRUE(runUntil([&] { return ended && weak.expired() && nativeWindows() == 0; }));
    }
}

TEST_F(AuthSessionLifetime, aTimerOutlivesNoSession) {
    auto session = startSession();
    start(session);
    const auto timer = Inspector::timeoutTimer(*session, 0);
    const std::weak_ptr<AuthSession> weak = session;
    ask(session, get(redirect));
    session.reset();
    ASSERT_TRUE(weak.expired());
    timer->fire();
    EXPECT_EQ(endings.size(), 1U);
}

TEST_F(AuthSessionLifetime, aHundredSessionsLeaveNothingBehind) {
    const auto runSessions = [this](std::size_t count) {
        for (std::size_t index = 0; index < count; ++index) {
            endings.clear();
            const auto connections = proxy.count(connectTarget);
            auto session = startSession(
                index % 2 == 0 ? std::nullopt : std::optional<std::string>("https://client.example"));
            const std::weak_ptr<AuthSession> weak = session;
            const std::weak_ptr<Platform::Window> window = Inspector::window(*session);
            const std::weak_ptr<Platform::WebView> view = Inspector::webView(*session);
            const WatchedWidget widget(*view.lock());
            // Every tenth session shows a page before it ends.
            if (index % 10 == 0) {
                ASSERT_TRUE(runUntil([&] { return proxy.count(connectTarget) > connections; }));
                ASSERT_TRUE(showPage(session, ""));
                runScript(*view.lock(), "window.close()");
                ASSERT_TRUE(waitForEnding());
            } else if (index % 3 == 0) {
                Inspector::timeoutTimer(*session)->fire();
            } else {
                ask(session, get(redirect));
            }
            session.reset();
            EXPECT_EQ(endings.size(), 1U);
            EXPECT_TRUE(weak.expired());
            EXPECT_TRUE(window.expired());
            EXPECT_TRUE(view.expired());
            ASSERT_TRUE(runUntil([&] { return widget.isGone() && nativeWindows() == 0; }))
                << nativeWindows() << " windows are left";
        }
    };
    // WebKitGTK caches the last web process of each site for five minutes, so processes of earlier tests may
    // still be running.
    const auto kept = TestSupport::webProcesses().size();
    // The first sessions allocate resources that GTK and WebKitGTK keep until the program exits. Run some
    // sessions first, so that these resources are not counted as leaks.
    runSessions(10);
    ASSERT_TRUE(runUntil([&] { return TestSupport::webProcesses().size() <= kept + 1; }));
    const auto processes = TestSupport::webProcesses().size();
    const auto descriptors = openDescriptors();
    const auto hosts = Platform::Application::shared().native().hosts.all().size();

    runSessions(100);
    EXPECT_EQ(Platform::Application::shared().native().hosts.all().size(), hosts);
    EXPECT_TRUE(runUntil([&] { return TestSupport::webProcesses().size() <= processes; }))
        << TestSupport::webProcesses().size() << " web processes";
    // WebKitGTK keeps connections to its processes open for a while, so allow for some additional
    // descriptors. A leak would add descriptors for every session.
    EXPECT_TRUE(runUntil([&] { return openDescriptors() < descriptors + 20; }))
        << openDescriptors() << " descriptors after " << descriptors;
}

TEST_F(AuthSessionLifetime, secretsAreNowhereOnStandardErrorButWhereTheLogPutsThem) {
    const std::string code = "code-" + std::string(40, 'c');
    const std::string state = "state-" + std::string(40, 's');
    const auto countOf = [this](const std::string& text) {
        return std::ranges::count_if(everything(),
                                     [&](const auto& line) { return line.find(text) != std::string::npos; });
    };
    {
        const auto session = startSession();
        ASSERT_TRUE(showPage(session, "<form method=post action='https://client.example/cb'><input name=code "
                                      "value='" +
                                          code + "'><input name=state value='" + state + "'></form>"));
        runScript(*Inspector::webView(*session), "document.forms[0].submit()");
        ASSERT_TRUE(waitForEnding());
        EXPECT_EQ(result().params.at("code"), code);
    }
    EXPECT_EQ(countOf(code), 0);
    EXPECT_EQ(countOf(state), 0);
    EXPECT_EQ(countOf("code=code-ccc…(45) state=state-ss…(46)"), 1);

    endings.clear();
    const auto session = startSession();
    ASSERT_TRUE(showPage(session, ""));
    runScript(*Inspector::webView(*session), "location.href = 'https://client.example/cb?code=" + code + "'");
    ASSERT_TRUE(waitForEnding());
    EXPECT_EQ(countOf(code), 1);
    EXPECT_EQ(countOf("nav GET https://client.example/cb?code=" + code), 1);
}

} // namespace TestSupport
