#pragma once

#include "Platform/Foundation/JSON.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// A form as a page submitted it. A plain value.
///
/// An engine need not hand over what a form posts, so each page's forms are watched by a script, which posts
/// what is submitted to the message handler `messageHandlerName` before the page goes away.
struct SubmittedForm {
    /// The name under which pages reach the handler of the script's messages.
    static constexpr std::string_view messageHandlerName = "keyloft";
    /// For every frame, from the document's start.
    static const std::string_view hookScript;

    /// Where the form goes.
    std::string action;
    /// Of a name told twice the last value counts.
    std::map<std::string, std::string> fields;

    /// What a message of the script tells, or nothing where it is not as the script writes it.
    static std::optional<SubmittedForm> fromMessage(const Platform::JSONValue& body);

    /// The action as a log shows it: its first 80 characters.
    std::string shownAction() const;

    friend bool operator==(const SubmittedForm&, const SubmittedForm&) = default;
};

} // namespace KeyloftCore
