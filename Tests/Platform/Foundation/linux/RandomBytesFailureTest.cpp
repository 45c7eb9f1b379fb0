#include "Platform/Foundation/RandomBytes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstddef>

namespace {

using Platform::RandomBytes;

// getrandom() returns an error if the buffer is not writable. A random number generator in user space would
// crash instead.
TEST(RandomBytes, aFailureIsReported) {
    static constexpr std::size_t size = 4096;
    void* const page = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    EXPECT_FALSE(RandomBytes::fill({static_cast<std::byte*>(page), size}));
    EXPECT_EQ(munmap(page, size), 0);
}

} // namespace
