#include "Platform/Foundation/FatalError.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

TEST(FatalErrorDeathTest, logsTheMessageAndStopsTheProcess) {
    EXPECT_EXIT(Platform::fatalError("the invariant is broken"), testing::KilledBySignal(SIGABRT),
                "the invariant is broken");
}

} // namespace
