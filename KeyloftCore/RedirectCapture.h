#pragma once

#include "KeyloftCore/SubmittedForm.h"
#include "Platform/Foundation/InputStream.h"
#include "Platform/WebKit/NavigationAction.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The rules by which a session judges navigations and reads results from them, independent of windows and
/// web views.
struct RedirectCapture {
    RedirectCapture() = delete;

    /// Returns true if a session may load pages from `host`: the authorization host, or a host that ends with
    /// a dot and the provider's domain or content-delivery domain. Case-sensitive.
    static bool isProviderHost(std::string_view host);

    /// The log line for a navigation to `url`.
    static std::string navigationLine(const Platform::URL& url, const Platform::NavigationAction& action);

    /// The parameters of a navigation to `url`. The sources are its query, its fragment (decoded, then split)
    /// and, if it is a POST, the body, or else the body stream, or else the form that was submitted last.
    /// Later sources override earlier ones. Logs the source of a POST's parameters, all names, and the
    /// shortened code and state.
    static std::map<std::string, std::string>
    parameters(const Platform::URL& url, const Platform::NavigationAction& action,
               const std::optional<SubmittedForm>& lastSubmittedForm);

    /// Reads `stream` to its end. Returns nothing if the bytes are not UTF-8.
    static std::optional<std::string> read(Platform::InputStream& stream);

    /// The HTML of a page that navigates to `authorizeURL` at once.
    static std::string bootstrapPage(const Platform::URL& authorizeURL);

    /// The first 100 characters of a URL, for the log.
    static std::string shownURL(const Platform::URL& url);

    /// The names of the fields, for the log: ["a", "b"].
    static std::string nameList(const std::map<std::string, std::string>& fields);
};

} // namespace KeyloftCore
