#pragma once

#include "KeyloftCore/AuthResult.h"
#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/HostError.h"
#include "KeyloftCore/SubmittedForm.h"
#include "Platform/WebKit/NavigationDelegate.h"
#include "Platform/WebKit/UIDelegate.h"
#include "Platform/WebKit/UserContentController.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Platform {
class Timer;
class WebView;
class Window;
} // namespace Platform

namespace KeyloftCore {

/// One Sign in with Apple authorization in a window of its own, from start to exactly one ending. Main thread
/// only.
///
/// The window's web view keeps nothing, goes nowhere but to the provider's hosts, and never loads the
/// redirect URI: the navigation to it is where the result is read from. Every step is told on standard error.
///
/// A started session keeps itself alive until its completion has been called; from then on only its creator
/// does. As long as the creator holds it, the window, hidden by then, and its page are still there, and what
/// the page does is logged and changes nothing.
class AuthSession : public Platform::NavigationPolicyDelegate,
                    public Platform::UIDelegate,
                    public Platform::ScriptMessageHandler,
                    public std::enable_shared_from_this<AuthSession> {
public:
    /// The provider's answer, or why there is none.
    using Result = std::expected<AuthResult, HostError>;
    /// Called once, on the main thread: with what the provider answered, or with
    ///
    /// - `timeout` five minutes after the start, whether the window is still on the screen or not,
    /// - `cancelled` when the page closes its window by script,
    /// - `internalError`, with the engine's description, when a page cannot be loaded.
    ///
    /// It may let the session go. What it holds is released when it returns.
    using Completion = std::function<void(Result)>;

    /// Creates a session. It opens and loads nothing before `start`.
    static std::shared_ptr<AuthSession> create(AuthorizeRequest request, Completion completion);

    AuthSession(const AuthSession&) = delete;
    AuthSession& operator=(const AuthSession&) = delete;
    ~AuthSession() override;

    /// The origin of the page that asks for the sign-in, for example "https://client.example": the provider
    /// is then entered from a page of that origin. Text that is no URL, empty text too, gives a page of no
    /// origin. Read by `start`, later changes have no effect.
    std::optional<std::string> initiatorOrigin;

    /// Opens the window and begins to load. The application object must exist, else the process stops. Called
    /// again, it opens another window with a time limit of its own; the first one stays as it is.
    void start();

    /// For the session's web view and the script in its pages. A host does not call these.
    void decidePolicy(Platform::WebView& webView, const Platform::NavigationAction& action,
                      const DecisionHandler& decisionHandler) override;
    void didFinishNavigation(Platform::WebView& webView) override;
    void didFailProvisionalNavigation(Platform::WebView& webView, const Platform::Error& error) override;
    void webViewDidClose(Platform::WebView& webView) override;
    void didReceiveScriptMessage(const Platform::ScriptMessage& message) override;

protected:
    /// For `create`.
    AuthSession(AuthorizeRequest request, Completion completion);

private:
    /// Tests look into a session and shorten its limits by it.
    friend struct AuthSessionInspector;

    /// What one `start` made.
    struct Run {
        std::shared_ptr<Platform::WebView> webView;
        std::shared_ptr<Platform::Window> window;
        std::shared_ptr<Platform::Timer> timeoutTimer;
    };

    std::shared_ptr<Platform::WebView> makeWebView();
    std::shared_ptr<Platform::Timer> makeTimeoutTimer();
    void beginLoading(Platform::WebView& webView) const;
    void finish(const Result& result);

    AuthorizeRequest request_;
    Completion completion_;
    /// Seconds; only tests choose others.
    double sessionTimeout_ = 300;
    double requestTimeout_ = 60;
    /// The last one counts; the earlier ones stay as they are.
    std::vector<Run> runs_;
    std::optional<SubmittedForm> lastSubmittedForm_;
    bool finished_ = false;
    /// The session itself, from its start to its completion.
    std::shared_ptr<AuthSession> running_;
};

} // namespace KeyloftCore
