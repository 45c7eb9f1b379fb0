#include "KeyloftCore/HostError.h"

namespace KeyloftCore {

std::string_view HostError::code() const noexcept {
    switch (kind_) {
    case Case::badRequest:
        return "bad_request";
    case Case::noNativeSheet:
        return "no_native_sheet";
    case Case::internalError:
        return "internal";
    case Case::cancelled:
        return "cancelled";
    case Case::timeout:
        return "timeout";
    }
    return {};
}

} // namespace KeyloftCore
