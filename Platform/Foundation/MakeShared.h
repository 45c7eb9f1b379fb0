#pragma once

#include <memory>
#include <utility>

namespace Platform {

/// Returns a shared object of a class with a protected constructor, so that it always has a shared owner.
template <typename T, typename... Arguments>
std::shared_ptr<T> makeShared(Arguments&&... arguments) {
    struct Made : T {
        explicit Made(Arguments&&... given)
            : T(std::forward<Arguments>(given)...) {}
    };
    return std::make_shared<Made>(std::forward<Arguments>(arguments)...);
}

} // namespace Platform
