#pragma once

#include <optional>
#include <stdexcept>
#include <utility>

namespace KeyloftTests {

/// The value that a test cannot go on without; its absence fails the test.
template <typename Value>
Value required(std::optional<Value> value) {
    if (!value) {
        throw std::runtime_error("a value that the test needs is absent");
    }
    return *std::move(value);
}

} // namespace KeyloftTests
