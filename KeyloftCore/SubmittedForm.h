#pragma once

#include "Platform/Foundation/JSON.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// A form that a page has submitted. A plain value type.
///
/// A web engine may not expose the body of a form submission. Therefore, a script in each page posts every
/// submitted form to the message handler `messageHandlerName` before the page is unloaded.
struct SubmittedForm {
    /// The name of the message handler that receives the messages of the script.
    static constexpr std::string_view messageHandlerName = "keyloft";
    /// The script that posts submitted forms. Inject it into every frame at document start.
    static const std::string_view hookScript;

    /// The action URL of the form.
    std::string action;
    /// The values of the form's fields by name. If a name occurs more than once, the last value is kept.
    std::map<std::string, std::string> fields;

    /// Parses the body of a message from the script. Returns nothing if the message does not have the
    /// structure that the script produces.
    static std::optional<SubmittedForm> fromMessage(const Platform::JSONValue& body);

    /// Returns the first 80 characters of the action URL, for the log.
    std::string shownAction() const;

    friend bool operator==(const SubmittedForm&, const SubmittedForm&) = default;
};

} // namespace KeyloftCore
