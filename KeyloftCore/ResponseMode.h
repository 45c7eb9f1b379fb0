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

/// The mode's text in URLs.
std::string_view rawValue(ResponseMode mode);

/// Returns the mode with exactly that text, or nothing.
std::optional<ResponseMode> responseModeFromRawValue(std::string_view rawValue);

} // namespace KeyloftCore
