#pragma once

#include <memory>
#include <utility>

namespace Platform {

/// Creates an object of a class whose protected constructor ensures that a `shared_ptr` always owns it.
template <typename T, typename... Arguments>
std::shared_ptr<T> makeShared(Arguments&&... arguments) {
    struct Made : T {
        explicit Made(Arguments&&... given)
            : T(std::forward<Arguments>(given)...) {}
    };
    return std::make_shared<Made>(std::forward<Arguments>(arguments)...);
}

} // namespace Platform
