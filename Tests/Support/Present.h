#pragma once

#include <optional>
#include <stdexcept>
#include <utility>

namespace TestSupport {

/// Returns the value. Throws an exception, which fails the test, if there is no value.
template <typename Value>
Value present(std::optional<Value> value) {
    if (!value) {
        throw std::runtime_error("a value is absent");
    }
    return *std::move(value);
}

} // namespace TestSupport
