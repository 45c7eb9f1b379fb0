#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/WebKit/NavigationDelegate.h"

#include <webkit/webkit.h>

#include <string>

namespace Platform {

/// Converts a WebKitGTK navigation action.
NavigationAction navigationAction(WebKitNavigationAction* action);

/// A request from WebKitGTK for a policy decision about a navigation. Only the first call to `answer` has an
/// effect. If `answer` is never called, the destructor cancels the navigation.
class NavigationQuestion {
public:
    explicit NavigationQuestion(WebKitNavigationPolicyDecision* decision);
    NavigationQuestion(const NavigationQuestion&) = delete;
    NavigationQuestion& operator=(const NavigationQuestion&) = delete;
    ~NavigationQuestion();

    const NavigationAction& action() const { return action_; }
    /// The URL, as serialized by WebKitGTK.
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
