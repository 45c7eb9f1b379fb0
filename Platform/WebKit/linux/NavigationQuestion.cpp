#include "Platform/WebKit/linux/NavigationQuestion.h"

#include <utility>

namespace Platform {

namespace {

NavigationType navigationType(WebKitNavigationType type) {
    switch (type) {
    case WEBKIT_NAVIGATION_TYPE_LINK_CLICKED:
        return NavigationType::linkActivated;
    case WEBKIT_NAVIGATION_TYPE_FORM_SUBMITTED:
        return NavigationType::formSubmitted;
    case WEBKIT_NAVIGATION_TYPE_BACK_FORWARD:
        return NavigationType::backForward;
    case WEBKIT_NAVIGATION_TYPE_RELOAD:
        return NavigationType::reload;
    case WEBKIT_NAVIGATION_TYPE_FORM_RESUBMITTED:
        return NavigationType::formResubmitted;
    case WEBKIT_NAVIGATION_TYPE_OTHER:
        break;
    }
    return NavigationType::other;
}

std::string uriOf(WebKitNavigationAction* action) {
    const char* uri = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    return uri ? uri : "";
}

} // namespace

NavigationAction navigationAction(WebKitNavigationAction* action) {
    NavigationAction result{.url = URL::fromString(uriOf(action)),
                            .method = std::nullopt,
                            .body = std::nullopt,
                            .bodyStream = nullptr,
                            .navigationType =
                                navigationType(webkit_navigation_action_get_navigation_type(action))};
    if (const char* method =
            webkit_uri_request_get_http_method(webkit_navigation_action_get_request(action))) {
        result.method = method;
    }
    return result;
}

NavigationQuestion::NavigationQuestion(WebKitNavigationPolicyDecision* decision)
    : decision_(GObjectPtr<WebKitPolicyDecision>::retain(WEBKIT_POLICY_DECISION(decision))) {
    auto* action = webkit_navigation_policy_decision_get_navigation_action(decision);
    action_ = navigationAction(action);
    uri_ = uriOf(action);
    isRedirect_ = webkit_navigation_action_is_redirect(action);
}

NavigationQuestion::~NavigationQuestion() { answer(NavigationActionPolicy::cancel); }

void NavigationQuestion::answer(NavigationActionPolicy policy) {
    const auto decision = std::exchange(decision_, {});
    if (!decision) {
        return;
    }
    if (policy == NavigationActionPolicy::allow) {
        webkit_policy_decision_use(decision.get());
    } else {
        webkit_policy_decision_ignore(decision.get());
    }
}

} // namespace Platform
