#include "Platform/Foundation/FatalError.h"

#include <gtest/gtest.h>

namespace {

TEST(FatalErrorDeathTest, logsTheMessageAndStopsTheProcess) {
    EXPECT_DEATH(Platform::fatalError("the invariant is broken"), "the invariant is broken");
}

} // namespace
