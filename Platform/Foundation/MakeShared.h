#pragma once

#include <memory>
#include <utility>

namespace Platform {

/// Like `std::make_shared`, for a class whose constructor is protected to prevent other kinds of ownership.
template <typename T, typename... Arguments>
std::shared_ptr<T> makeShared(Arguments&&... arguments) {
    struct Made : T {
        explicit Made(Arguments&&... given)
            : T(std::forward<Arguments>(given)...) {}
    };
    return std::make_shared<Made>(std::forward<Arguments>(arguments)...);
}

} // namespace Platform
