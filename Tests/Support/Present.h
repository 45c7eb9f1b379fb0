#pragma once

#include <optional>
#include <stdexcept>
#include <utility>

namespace TestSupport {

/// What `value` holds; an absent one throws, which fails the test that expected it.
template <typename Value>
Value present(std::optional<Value> value) {
    if (!value) {
        throw std::runtime_error("a value is absent");
    }
    return *std::move(value);
}

} // namespace TestSupport
