#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/NavigationDelegate.h"

#include <webkit/webkit.h>

#include <string>

namespace Platform {

/// The engine's words for a navigation, in ours.
NavigationAction navigationAction(WebKitNavigationAction* action);

/// The engine's question whether a navigation may go on. Only the first answer counts; without one,
/// destruction answers with no.
class NavigationQuestion {
public:
    explicit NavigationQuestion(WebKitNavigationPolicyDecision* decision);
    NavigationQuestion(const NavigationQuestion&) = delete;
    NavigationQuestion& operator=(const NavigationQuestion&) = delete;
    ~NavigationQuestion();

    const NavigationAction& action() const { return action_; }
    /// As the engine writes the URL.
    const std::string& uri() const { return uri_; }
    bool isRedirect() const { return isRedirect_; }

    void answer(NavigationActionPolicy policy);

private:
    GObjectPtr<WebKitPolicyDecision> decision_;
    NavigationAction action_;
    std::string uri_;
    bool isRedirect_ = false;
};

} // namespace Platform
