#pragma once

#include "KeyloftCore/SubmittedForm.h"
#include "Platform/Foundation/InputStream.h"
#include "Platform/WebKit/NavigationAction.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// What a session decides about navigations and reads from them: its rules without window and engine.
struct RedirectCapture {
    RedirectCapture() = delete;

    /// Whether a session's pages may come from `host`: the authorization host, and what ends with its parent
    /// domain or the provider's content-delivery domain behind a dot. Exact and case-sensitive.
    static bool isProviderHost(std::string_view host);

    /// The log's line about a navigation to `url`.
    static std::string navigationLine(const Platform::URL& url, const Platform::NavigationAction& action);

    /// The parameters that a navigation to `url` brings along, each source overriding the ones before: its
    /// query, its fragment (decoded, then split) and, of a POST, the body, else the stream, else the form
    /// that was submitted last. Logs where a POST's came from and, shortened, what was found.
    static std::map<std::string, std::string>
    parameters(const Platform::URL& url, const Platform::NavigationAction& action,
               const std::optional<SubmittedForm>& lastSubmittedForm);

    /// All that is left in `stream`, or nothing where that is no UTF-8.
    static std::optional<std::string> read(Platform::InputStream& stream);

    /// A page that goes to `authorizeURL` at once.
    static std::string bootstrapPage(const Platform::URL& authorizeURL);

    /// A URL as the log shows it: its first 100 characters.
    static std::string shownURL(const Platform::URL& url);

    /// The fields' names as the log shows them: ["a", "b"].
    static std::string nameList(const std::map<std::string, std::string>& fields);
};

} // namespace KeyloftCore
