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

/// Completes one Sign in with Apple authorization in a window of its own. Main thread only.
///
/// The window's web view uses a non-persistent data store and loads pages from the provider's hosts only. It
/// never loads the redirect URI: the session cancels the navigation to it and reads the result from that
/// navigation. Each step is logged to standard error.
///
/// A started session keeps itself alive until its completion returns. After that it lives as long as its
/// owner holds it, with its hidden window and the page. Whatever the page then does is logged and has no
/// effect.
class AuthSession : public Platform::NavigationPolicyDelegate,
                    public Platform::UIDelegate,
                    public Platform::ScriptMessageHandler,
                    public std::enable_shared_from_this<AuthSession> {
public:
    /// The provider's response, or the error that ended the session.
    using Result = std::expected<AuthResult, HostError>;
    /// Called once, on the main thread, with the provider's response or one of these errors:
    ///
    /// - `timeout` if five minutes have passed since the start, even if the user has closed the window,
    /// - `cancelled` if the page closes its window by script,
    /// - `internalError`, with the web engine's description, if a page cannot be loaded.
    ///
    /// It may release the session. The session destroys it, with everything that it captures, after it
    /// returns.
    using Completion = std::function<void(Result)>;

    /// Creates a session. Opens and loads nothing before `start`.
    static std::shared_ptr<AuthSession> create(AuthorizeRequest request, Completion completion);

    AuthSession(const AuthSession&) = delete;
    AuthSession& operator=(const AuthSession&) = delete;
    ~AuthSession() override;

    /// The origin of the page that requests the sign-in, for example "https://client.example". If it is set,
    /// the session starts from a page of that origin, which navigates to the authorize URL. If the text is
    /// empty or not a URL, that page has no origin. Read by `start`; later changes have no effect.
    std::optional<std::string> initiatorOrigin;

    /// Opens the window and starts to load. Aborts if there is no application object. A second call opens
    /// another window with its own time limit and leaves the first one as it is.
    void start();

    /// For the session's web view and the script in its pages. Hosts do not call these functions.
    void decidePolicy(Platform::WebView& webView, const Platform::NavigationAction& action,
                      const DecisionHandler& decisionHandler) override;
    void didFinishNavigation(Platform::WebView& webView) override;
    void didFailProvisionalNavigation(Platform::WebView& webView, const Platform::Error& error) override;
    void webViewDidClose(Platform::WebView& webView) override;
    void didReceiveScriptMessage(const Platform::ScriptMessage& message) override;

protected:
    /// Used by `create`.
    AuthSession(AuthorizeRequest request, Completion completion);

private:
    /// Lets tests inspect a session and shorten its time limits.
    friend struct AuthSessionInspector;

    /// The objects that one call of `start` creates.
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
    /// In seconds. Only tests change them.
    double sessionTimeout_ = 300;
    double requestTimeout_ = 60;
    /// One for each call of `start`. When the session ends, the last one is stopped and hidden, and the
    /// others stay as they are.
    std::vector<Run> runs_;
    std::optional<SubmittedForm> lastSubmittedForm_;
    bool finished_ = false;
    /// A reference to this session itself, from `start` until it ends.
    std::shared_ptr<AuthSession> running_;
};

} // namespace KeyloftCore
