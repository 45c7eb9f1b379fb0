#include "KeyloftCore/ResponseMode.h"

#include <array>

namespace KeyloftCore {

std::string_view rawValue(ResponseMode mode) {
    switch (mode) {
    case ResponseMode::query:
        return "query";
    case ResponseMode::fragment:
        return "fragment";
    case ResponseMode::formPost:
        return "form_post";
    case ResponseMode::webMessage:
        return "web_message";
    }
    return {};
}

std::optional<ResponseMode> responseModeFromRawValue(std::string_view text) {
    for (const auto mode :
         {ResponseMode::query, ResponseMode::fragment, ResponseMode::formPost, ResponseMode::webMessage}) {
        if (rawValue(mode) == text) {
            return mode;
        }
    }
    return std::nullopt;
}

} // namespace KeyloftCore
