#include "KeyloftCore/RelaySocketError.h"

#include <utility>

namespace KeyloftCore {

RelaySocketError::RelaySocketError(Case kind, std::string_view call, std::int32_t code, std::string text)
    : kind_(kind)
    , call_(call)
    , code_(code)
    , text_(std::move(text)) {}

RelaySocketError RelaySocketError::syscall(std::string_view call, std::int32_t code) {
    return {Case::syscall, call, code,
            "syscall(\"" + std::string(call) + "\", " + std::to_string(code) + ")"};
}

RelaySocketError RelaySocketError::pathTooLong() { return {Case::pathTooLong, "", 0, "pathTooLong"}; }

RelaySocketError RelaySocketError::pathContainsNUL() {
    return {Case::pathContainsNUL, "", 0, "pathContainsNUL"};
}

} // namespace KeyloftCore
