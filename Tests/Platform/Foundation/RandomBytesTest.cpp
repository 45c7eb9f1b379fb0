#include "Platform/Foundation/RandomBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace {

using Platform::RandomBytes;

TEST(RandomBytes, everyByteIsFilled) {
    // A byte that is never written is zero in all eight draws. A random byte is zero in all of them with a
    // probability of 2^-64.
    std::array<std::byte, 300> seen = {};
    for (int draw = 0; draw < 8; ++draw) {
        std::array<std::byte, 300> bytes = {};
        ASSERT_TRUE(RandomBytes::fill(bytes));
        std::ranges::transform(seen, bytes, seen.begin(), [](std::byte a, std::byte b) { return a | b; });
    }
    EXPECT_EQ(std::ranges::count(seen, std::byte{0}), 0);
}

TEST(RandomBytes, twoDrawsDiffer) {
    std::array<std::byte, 32> first = {};
    std::array<std::byte, 32> second = {};
    ASSERT_TRUE(RandomBytes::fill(first));
    ASSERT_TRUE(RandomBytes::fill(second));
    EXPECT_NE(first, second);
}

TEST(RandomBytes, nothingToFillSucceeds) { EXPECT_TRUE(RandomBytes::fill({})); }

TEST(RandomBytes, moreThanTheGeneratorGivesAtOnceIsFilledWhole) {
    // On Linux, one call to getrandom() returns at most 32 MiB.
    std::vector<std::byte> bytes((std::size_t{32} << 20U) + 4096);
    ASSERT_TRUE(RandomBytes::fill(bytes));
    const auto tail = std::span(bytes).last(64);
    EXPECT_LT(std::ranges::count(tail, std::byte{0}), 32);
}

} // namespace
