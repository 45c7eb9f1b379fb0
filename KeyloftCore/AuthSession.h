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

/// Completes one Sign in with Apple authorization in its own window. Main thread only.
///
/// The web view in the window uses a non-persistent data store and loads pages only from the provider's
/// hosts. It never loads the redirect URI: the session cancels the navigation to the redirect URI and
/// extracts the result from the cancelled navigation. Each step is logged to standard error.
///
/// A started session keeps itself alive until its completion returns. Afterwards, the owner's references keep
/// the session, its hidden window and the page alive. Anything that the page does after completion is logged
/// but has no effect.
class AuthSession : public Platform::NavigationPolicyDelegate,
                    public Platform::UIDelegate,
                    public Platform::ScriptMessageHandler,
                    public std::enable_shared_from_this<AuthSession> {
public:
    /// The provider's response, or the error that terminated the session.
    using Result = std::expected<AuthResult, HostError>;
    /// Called once, on the main thread, with the provider's response or one of these errors:
    ///
    /// - `timeout` if five minutes have passed since `start`, even if the user has closed the window,
    /// - `cancelled` if a script of the page closes the window,
    /// - `internalError`, with the web engine's description of the error, if a page cannot be loaded.
    ///
    /// The completion may release the session. The session destroys the completion and its captures after the
    /// completion has returned.
    using Completion = std::function<void(Result)>;

    /// Creates a session. No window is opened and nothing is loaded before `start` is called.
    static std::shared_ptr<AuthSession> create(AuthorizeRequest request, Completion completion);

    AuthSession(const AuthSession&) = delete;
    AuthSession& operator=(const AuthSession&) = delete;
    ~AuthSession() override;

    /// The origin of the page that requests the sign-in, for example "https://client.example". If set, the
    /// session first loads a small page with this origin, which then navigates to the authorize URL. If the
    /// string is empty or not a valid URL, that page has an opaque origin. If unset, the session loads the
    /// authorize URL directly. Read by `start`; later changes have no effect.
    std::optional<std::string> initiatorOrigin;

    /// Opens the window and starts loading. Aborts if the application object does not exist. Calling `start`
    /// again opens another window with its own time limit and does not affect the first window.
    void start();

    /// Called by the session's web view and by the script in its pages. Do not call these functions directly.
    void decidePolicy(Platform::WebView& webView, const Platform::NavigationAction& action,
                      const DecisionHandler& decisionHandler) override;
    void didFinishNavigation(Platform::WebView& webView) override;
    void didFailProvisionalNavigation(Platform::WebView& webView, const Platform::Error& error) override;
    void webViewDidClose(Platform::WebView& webView) override;
    void didReceiveScriptMessage(const Platform::ScriptMessage& message) override;

protected:
    /// Called only by `create`.
    AuthSession(AuthorizeRequest request, Completion completion);

private:
    /// Lets tests inspect a session and shorten its time limits.
    friend struct AuthSessionInspector;

    /// The objects created by one call to `start`.
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
    /// Time limits in seconds. Only tests change them.
    double sessionTimeout_ = 300;
    double requestTimeout_ = 60;
    /// One element per call to `start`. When the session finishes, it invalidates the timer and hides the
    /// window of the last element, and leaves the others alone.
    std::vector<Run> runs_;
    std::optional<SubmittedForm> lastSubmittedForm_;
    bool finished_ = false;
    /// A reference from the session to itself, set by `start` and released when the session finishes.
    std::shared_ptr<AuthSession> running_;
};

} // namespace KeyloftCore
