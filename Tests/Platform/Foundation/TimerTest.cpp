#include "Platform/Foundation/Timer.h"

#include "Platform/Foundation/RunLoop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Platform::RunLoop;
using Platform::Timer;
using Clock = std::chrono::steady_clock;

/// Runs the main run loop for `interval` seconds.
void runFor(Timer::Interval interval) {
    const auto timer = Timer::scheduled(interval, false, [] { RunLoop::main().stop(); });
    RunLoop::main().run();
}

TEST(Timer, firesOnceAfterItsIntervalAndIsUsedUp) {
    int calls = 0;
    const auto start = Clock::now();
    std::shared_ptr<Timer> timer;
    timer = Timer::scheduled(0.02, false, [&] {
        ++calls;
        EXPECT_FALSE(timer->isValid());
        RunLoop::main().stop();
    });
    EXPECT_TRUE(timer->isValid());
    RunLoop::main().run();
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(20));
    runFor(0.03);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(timer->isValid());
}

TEST(Timer, firesAgainAndAgainIfItRepeats) {
    int calls = 0;
    const auto timer = Timer::scheduled(0.001, true, [&] {
        if (++calls == 5) {
            RunLoop::main().stop();
        }
    });
    RunLoop::main().run();
    EXPECT_EQ(calls, 5);
    EXPECT_TRUE(timer->isValid());
}

TEST(Timer, neverFiresOnceInvalidated) {
    int calls = 0;
    const auto timer = Timer::scheduled(0.001, true, [&] { ++calls; });
    testing::internal::CaptureStderr();
    timer->invalidate();
    timer->invalidate();
    EXPECT_FALSE(timer->isValid());
    timer->fire();
    runFor(0.01);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Timer, isInvalidatedWithItsLastReference) {
    int calls = 0;
    auto timer = Timer::scheduled(0.001, true, [&] { ++calls; });
    timer.reset();
    runFor(0.01);
    EXPECT_EQ(calls, 0);
}

TEST(Timer, releasesItsCallbackWhenInvalidatedOrUsedUp) {
    const auto held = std::make_shared<int>(0);
    const auto repeating = Timer::scheduled(60, true, [held] {});
    const auto once = Timer::scheduled(60, false, [held] {});
    EXPECT_EQ(held.use_count(), 3);
    repeating->invalidate();
    EXPECT_EQ(held.use_count(), 2);
    once->fire();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(Timer, firedByHandIsUsedUpUnlessItRepeats) {
    int calls = 0;
    const auto once = Timer::scheduled(0.001, false, [&] { ++calls; });
    once->fire();
    once->fire();
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(once->isValid());
    const auto repeating = Timer::scheduled(60, true, [&] { ++calls; });
    repeating->fire();
    repeating->fire();
    EXPECT_EQ(calls, 3);
    EXPECT_TRUE(repeating->isValid());
    runFor(0.01);
    EXPECT_EQ(calls, 3);
}

TEST(Timer, mayBeDestroyedByItsCallback) {
    for (const bool repeats : {false, true}) {
        const auto held = std::make_shared<int>(0);
        int calls = 0;
        std::shared_ptr<Timer> timer;
        timer = Timer::scheduled(0.001, repeats, [&, copy = held] {
            timer.reset();
            // The captures of the callback stay alive until the callback returns.
            EXPECT_EQ(copy.use_count(), 2);
            ++calls;
        });
        runFor(0.01);
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(held.use_count(), 1);
    }
}

TEST(Timer, mayBeDestroyedByItsCallbackWhenFiredByHand) {
    for (const bool repeats : {false, true}) {
        int calls = 0;
        std::shared_ptr<Timer> timer;
        timer = Timer::scheduled(60, repeats, [&] {
            timer.reset();
            ++calls;
        });
        timer->fire();
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(timer, nullptr);
    }
}

TEST(Timer, mayBeInvalidatedByItsCallback) {
    int calls = 0;
    std::shared_ptr<Timer> timer;
    timer = Timer::scheduled(0.001, true, [&] {
        timer->invalidate();
        ++calls;
    });
    runFor(0.01);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(timer->isValid());
}

TEST(Timer, mayBeOwnedByItsCallback) {
    std::weak_ptr<Timer> observed;
    auto owner = std::make_shared<std::shared_ptr<Timer>>();
    *owner = Timer::scheduled(60, true, [owner] {});
    observed = *owner;
    Timer& timer = **owner;
    owner.reset();
    EXPECT_FALSE(observed.expired());
    timer.invalidate();
    EXPECT_TRUE(observed.expired());
}

TEST(Timer, takesAnyInterval) {
    int calls = 0;
    std::vector<std::shared_ptr<Timer>> timers;
    for (const Timer::Interval interval : {0.0, -1.0, 1e-9, std::numeric_limits<double>::quiet_NaN(),
                                           -std::numeric_limits<double>::infinity()}) {
        timers.push_back(Timer::scheduled(interval, false, [&] { ++calls; }));
    }
    for (const Timer::Interval interval : {1e12, std::numeric_limits<double>::infinity()}) {
        timers.push_back(Timer::scheduled(interval, false, [] { FAIL(); }));
    }
    runFor(0.02);
    EXPECT_EQ(calls, 5);
}

TEST(RunLoop, performsInOrderOnALaterTurn) {
    std::vector<int> order;
    for (int i = 0; i < 3; ++i) {
        RunLoop::main().perform([&order, i] { order.push_back(i); });
    }
    EXPECT_TRUE(order.empty());
    RunLoop::main().perform([] { RunLoop::main().stop(); });
    RunLoop::main().run();
    EXPECT_EQ(order, (std::vector{0, 1, 2}));
}

TEST(RunLoop, performsOnTheMainThreadWhatAnotherAsksFor) {
    std::thread::id performedOn;
    std::thread other([&] {
        RunLoop::main().perform([&] {
            performedOn = std::this_thread::get_id();
            RunLoop::main().stop();
        });
    });
    RunLoop::main().run();
    other.join();
    EXPECT_EQ(performedOn, std::this_thread::get_id());
}

TEST(RunLoop, runsInsideACallbackUntilItsOwnStop) {
    std::vector<int> order;
    RunLoop::main().perform([&] {
        RunLoop::main().perform([&] {
            order.push_back(1);
            RunLoop::main().stop();
        });
        RunLoop::main().run();
        order.push_back(2);
        RunLoop::main().perform([&] {
            order.push_back(3);
            RunLoop::main().stop();
        });
    });
    RunLoop::main().run();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(RunLoop, aStopOutsideOfARunDoesNothing) {
    testing::internal::CaptureStderr();
    RunLoop::main().stop();
    runFor(0.001);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
