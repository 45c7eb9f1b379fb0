#include "Platform/Dispatch/SerialQueue.h"

#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Platform::SerialQueue;
using TestSupport::Event;

TEST(SerialQueue, keepsItsLabel) {
    const SerialQueue queue("velde.orvane.keyloft.test");
    EXPECT_EQ(queue.label(), "velde.orvane.keyloft.test");
}

TEST(SerialQueue, runsWorkInTheOrderOfHandingOver) {
    std::vector<int> order;
    SerialQueue queue("test");
    for (int index = 0; index < 1000; ++index) {
        queue.async([&order, index] { order.push_back(index); });
    }
    queue.sync([&] { order.push_back(1000); });
    ASSERT_EQ(order.size(), 1001U);
    for (int index = 0; index <= 1000; ++index) {
        EXPECT_EQ(order[static_cast<std::size_t>(index)], index);
    }
}

TEST(SerialQueue, runsOneItemAtATimeHoweverManyThreadsHandOver) {
    // Deliberately not atomic, so that ThreadSanitizer can verify that the queue synchronizes the changes.
    int count = 0;
    {
        SerialQueue queue("test");
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (int turn = 0; turn < 500; ++turn) {
                    if (turn % 10 == 0) {
                        queue.sync([&] { ++count; });
                    } else {
                        queue.async([&] { ++count; });
                    }
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }
    EXPECT_EQ(count, 2000);
}

TEST(SerialQueue, workHandedOverByWorkComesAfterWhatWaits) {
    std::vector<int> order;
    SerialQueue queue("test");
    queue.sync([&] {
        queue.async([&] {
            order.push_back(1);
            queue.async([&] { order.push_back(3); });
        });
        queue.async([&] { order.push_back(2); });
    });
    // If item 3 is enqueued after the work item of the first `sync` call, only the second `sync` call waits
    // for item 3.
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(SerialQueue, knowsWhetherTheCallerRunsOnIt) {
    SerialQueue queue("test");
    SerialQueue other("other");
    EXPECT_FALSE(queue.isCurrent());
    queue.sync([&] {
        EXPECT_TRUE(queue.isCurrent());
        EXPECT_FALSE(other.isCurrent());
    });
}

TEST(SerialQueue, queuesMayWaitForEachOther) {
    SerialQueue queue("test");
    SerialQueue other("other");
    bool ran = false;
    queue.sync([&] { other.sync([&] { ran = true; }); });
    EXPECT_TRUE(ran);
}

TEST(SerialQueue, delayedWorkRunsNoEarlierThanDue) {
    SerialQueue queue("test");
    Event done;
    const auto begin = std::chrono::steady_clock::now();
    std::chrono::steady_clock::duration waited{};
    queue.asyncAfter(std::chrono::milliseconds(20), [&] {
        waited = std::chrono::steady_clock::now() - begin;
        done.signal();
    });
    ASSERT_TRUE(done.wait());
    EXPECT_GE(waited, std::chrono::milliseconds(20));
}

TEST(SerialQueue, delayedWorkRunsInTheOrderOfItsTimes) {
    SerialQueue queue("test");
    std::vector<int> order;
    Event done;
    queue.asyncAfter(std::chrono::milliseconds(30), [&] {
        order.push_back(2);
        done.signal();
    });
    queue.asyncAfter(std::chrono::milliseconds(10), [&] { order.push_back(1); });
    queue.asyncAfter(std::chrono::milliseconds(0), [&] { order.push_back(0); });
    ASSERT_TRUE(done.wait());
    EXPECT_EQ(order, (std::vector{0, 1, 2}));
}

TEST(SerialQueue, theEndRunsWhatWasHandedOverAndDropsWhatIsNotDue) {
    int ran = 0;
    const auto token = std::make_shared<int>(0);
    {
        SerialQueue queue("test");
        for (int index = 0; index < 100; ++index) {
            queue.async([&] { ++ran; });
        }
        queue.asyncAfter(std::chrono::hours(1), [&ran, token] { ran += 1000; });
    }
    EXPECT_EQ(ran, 100);
    EXPECT_EQ(token.use_count(), 1) << "work that will never run must be released";
}

TEST(SerialQueue, releasesEachItemBeforeTheNextRuns) {
    SerialQueue queue("test");
    auto token = std::make_shared<int>(0);
    const std::weak_ptr<int> weak = token;
    bool released = false;
    queue.sync([&] {
        queue.async([token = std::move(token)] {});
        queue.async([&] { released = weak.expired(); });
    });
    queue.sync([] {});
    EXPECT_TRUE(released);
}

TEST(SerialQueueDeathTest, aSynchronousCallOnItselfStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SerialQueue queue("velde.orvane.keyloft.test");
            queue.sync([&] { queue.sync([] {}); });
        },
        "sync was called on its own queue, which would deadlock: velde.orvane.keyloft.test");
}

} // namespace
