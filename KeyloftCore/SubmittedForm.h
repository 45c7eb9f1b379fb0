#pragma once

#include "Platform/Foundation/JSON.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// A form that a page has submitted. A plain value.
///
/// Web engines need not expose the body that a form posts. A script in each page therefore posts every
/// submitted form to the message handler `messageHandlerName` before the page goes away.
struct SubmittedForm {
    /// The name of the handler that receives the script's messages.
    static constexpr std::string_view messageHandlerName = "keyloft";
    /// The script. Inject it into every frame at document start.
    static const std::string_view hookScript;

    /// The form's action URL.
    std::string action;
    /// Values by name. If a name occurs twice, the last value counts.
    std::map<std::string, std::string> fields;

    /// Parses the body of a message from the script. Returns nothing if it does not have the structure that
    /// the script writes.
    static std::optional<SubmittedForm> fromMessage(const Platform::JSONValue& body);

    /// The first 80 characters of the action, for the log.
    std::string shownAction() const;

    friend bool operator==(const SubmittedForm&, const SubmittedForm&) = default;
};

} // namespace KeyloftCore
