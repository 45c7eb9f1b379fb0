#pragma once

#include <optional>
#include <string_view>

namespace KeyloftCore {

/// The `response_mode` of an authorize URL: how the identity provider returns its response.
enum class ResponseMode {
    query,      ///< "query"
    fragment,   ///< "fragment"
    formPost,   ///< "form_post"
    webMessage, ///< "web_message"
};

/// Returns the string that identifies the mode in a URL.
std::string_view rawValue(ResponseMode mode);

/// Returns the mode that `rawValue` identifies, or nothing for other values. Case-sensitive.
std::optional<ResponseMode> responseModeFromRawValue(std::string_view rawValue);

} // namespace KeyloftCore
