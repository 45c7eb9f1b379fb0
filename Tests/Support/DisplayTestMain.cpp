#include "Tests/Support/Display.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    try {
        TestSupport::beginDisplaySession();
        return RUN_ALL_TESTS();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The tests' display or session failed: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
