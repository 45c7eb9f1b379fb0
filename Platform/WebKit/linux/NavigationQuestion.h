#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/NavigationDelegate.h"

#include <webkit/webkit.h>

#include <string>

namespace Platform {

/// Converts a navigation action of WebKitGTK.
NavigationAction navigationAction(WebKitNavigationAction* action);

/// A policy question of WebKitGTK about a navigation. Only the first answer counts. Without an answer, the
/// destructor cancels the navigation.
class NavigationQuestion {
public:
    explicit NavigationQuestion(WebKitNavigationPolicyDecision* decision);
    NavigationQuestion(const NavigationQuestion&) = delete;
    NavigationQuestion& operator=(const NavigationQuestion&) = delete;
    ~NavigationQuestion();

    const NavigationAction& action() const { return action_; }
    /// The URL as WebKitGTK writes it.
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
