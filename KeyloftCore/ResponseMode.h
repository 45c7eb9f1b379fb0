#pragma once

#include <optional>
#include <string_view>

namespace KeyloftCore {

/// How the identity provider is asked to answer: the authorize URL's `response_mode`.
enum class ResponseMode {
    query,      ///< "query"
    fragment,   ///< "fragment"
    formPost,   ///< "form_post"
    webMessage, ///< "web_message"
};

/// The mode's text in URLs.
std::string_view rawValue(ResponseMode mode);

/// The mode of exactly that text, or nothing.
std::optional<ResponseMode> responseModeFromRawValue(std::string_view rawValue);

} // namespace KeyloftCore
