#pragma once

#include "KeyloftCore/SubmittedForm.h"
#include "Platform/Foundation/InputStream.h"
#include "Platform/WebKit/NavigationAction.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// Functions that a session uses to evaluate navigations and to extract results from them. They do not depend
/// on windows or web views.
struct RedirectCapture {
    RedirectCapture() = delete;

    /// Returns true if a session may load pages from `host`: the authorization host, or a subdomain of the
    /// provider's domain or of its content delivery domain. Case-sensitive.
    static bool isProviderHost(std::string_view host);

    /// Returns the log line for a navigation to `url`.
    static std::string navigationLine(const Platform::URL& url, const Platform::NavigationAction& action);

    /// Returns the parameters of a navigation to `url`. They are read from the query, then from the fragment
    /// (which is decoded before it is split) and, for a POST request, from the body. If the body is missing
    /// or not UTF-8, the body stream is used instead, or else the form that was submitted last. Later sources
    /// override earlier ones. Logs the source of the POST parameters, the names of all parameters, and the
    /// shortened code and state.
    static std::map<std::string, std::string>
    parameters(const Platform::URL& url, const Platform::NavigationAction& action,
               const std::optional<SubmittedForm>& lastSubmittedForm);

    /// Reads `stream` to the end. Returns nothing if the bytes are not valid UTF-8.
    static std::optional<std::string> read(Platform::InputStream& stream);

    /// Returns the HTML of a page that immediately navigates to `authorizeURL`.
    static std::string bootstrapPage(const Platform::URL& authorizeURL);

    /// Returns the first 100 characters of a URL, for the log.
    static std::string shownURL(const Platform::URL& url);

    /// Returns the names of the fields for the log, in the form ["a", "b"].
    static std::string nameList(const std::map<std::string, std::string>& fields);
};

} // namespace KeyloftCore
