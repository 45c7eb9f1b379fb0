#include "Platform/WebKit/LoadTimeout.h"

#include "Platform/Foundation/RunLoop.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace {

using Platform::LoadTimeout;
using Platform::RunLoop;
using Platform::Timer;

class LoadTimeoutTest : public testing::Test {
protected:
    /// Runs the main run loop for `seconds`.
    static void runFor(Timer::Interval seconds) {
        const auto end = Timer::scheduled(seconds, false, [] { RunLoop::main().stop(); });
        RunLoop::main().run();
    }

    LoadTimeout timeout(Timer::Interval interval) {
        return {interval, [this] { ++expirations; }};
    }

    int expirations = 0;
};

TEST_F(LoadTimeoutTest, expiresOnceAfterItsInterval) {
    auto timeout = this->timeout(0.02);
    timeout.start();
    EXPECT_FALSE(timeout.hasExpired());
    runFor(0.1);
    EXPECT_EQ(expirations, 1);
    EXPECT_TRUE(timeout.hasExpired());
}

TEST_F(LoadTimeoutTest, doesNotRunBeforeItsStart) {
    auto timeout = this->timeout(0.01);
    timeout.restart();
    runFor(0.05);
    EXPECT_EQ(expirations, 0);
    EXPECT_FALSE(timeout.hasExpired());
}

TEST_F(LoadTimeoutTest, neverExpiresWithoutAnInterval) {
    for (const double interval : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        auto timeout = this->timeout(interval);
        timeout.start();
        runFor(0.02);
        EXPECT_EQ(expirations, 0) << interval;
        EXPECT_FALSE(timeout.hasExpired()) << interval;
    }
}

TEST_F(LoadTimeoutTest, isStopped) {
    auto timeout = this->timeout(0.01);
    timeout.start();
    timeout.stop();
    timeout.restart();
    runFor(0.05);
    EXPECT_EQ(expirations, 0);
}

TEST_F(LoadTimeoutTest, beginsAnewWhenItIsRestarted) {
    auto timeout = this->timeout(0.01);
    timeout.start();
    runFor(0.05);
    ASSERT_EQ(expirations, 1);
    timeout.restart();
    EXPECT_FALSE(timeout.hasExpired());
    runFor(0.05);
    EXPECT_EQ(expirations, 2);
}

TEST_F(LoadTimeoutTest, endsWithItsOwner) {
    auto timeout = std::make_unique<LoadTimeout>(0.01, [this] { ++expirations; });
    timeout->start();
    timeout.reset();
    runFor(0.05);
    EXPECT_EQ(expirations, 0);
}

TEST_F(LoadTimeoutTest, mayBeStoppedOrLetGoWhenItExpires) {
    std::unique_ptr<LoadTimeout> timeout;
    timeout = std::make_unique<LoadTimeout>(0.01, [&] {
        ++expirations;
        timeout->stop();
        timeout.reset();
    });
    timeout->start();
    runFor(0.05);
    EXPECT_EQ(expirations, 1);
}

} // namespace
