#include "Tests/Support/Display.h"
#include "Tests/Support/ProviderNetwork.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    try {
        TestSupport::ProviderNetwork::enter(arguments);
        TestSupport::beginDisplaySession();
        return RUN_ALL_TESTS();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The tests' network, display or session failed: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
