#pragma once

#include "KeyloftCore/AuthSession.h"
#include "Platform/AppKit/Window.h"
#include "Platform/Foundation/Timer.h"
#include "Platform/WebKit/WebView.h"

#include <cstddef>
#include <memory>

namespace KeyloftCore {

/// Gives tests access to the private state of a session. Each call to `start` creates a run; `run` is its
/// zero-based index.
struct AuthSessionInspector {
    static std::size_t runCount(const AuthSession& session) { return session.runs_.size(); }
    static const std::shared_ptr<Platform::WebView>& webView(const AuthSession& session,
                                                             std::size_t run = 0) {
        return session.runs_.at(run).webView;
    }
    static const std::shared_ptr<Platform::Window>& window(const AuthSession& session, std::size_t run = 0) {
        return session.runs_.at(run).window;
    }
    static const std::shared_ptr<Platform::Timer>& timeoutTimer(const AuthSession& session,
                                                                std::size_t run = 0) {
        return session.runs_.at(run).timeoutTimer;
    }

    /// The timeouts, in seconds. Set them before `start` is called.
    static void setSessionTimeout(AuthSession& session, double timeout) { session.sessionTimeout_ = timeout; }
    static void setRequestTimeout(AuthSession& session, double timeout) { session.requestTimeout_ = timeout; }
    static double sessionTimeout(const AuthSession& session) { return session.sessionTimeout_; }
    static double requestTimeout(const AuthSession& session) { return session.requestTimeout_; }
};

} // namespace KeyloftCore
