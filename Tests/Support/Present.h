#pragma once

#include <optional>
#include <stdexcept>
#include <utility>

namespace TestSupport {

/// Returns the value. Throws if it is absent, which fails the test.
template <typename Value>
Value present(std::optional<Value> value) {
    if (!value) {
        throw std::runtime_error("a value is absent");
    }
    return *std::move(value);
}

} // namespace TestSupport
