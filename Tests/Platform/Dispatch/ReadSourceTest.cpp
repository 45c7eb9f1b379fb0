#include "Platform/Dispatch/ReadSource.h"

#include "Platform/Dispatch/SerialQueue.h"
#include "Tests/Platform/Dispatch/Pipe.h"
#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using Platform::ReadSource;
using Platform::SerialQueue;
using TestSupport::Event;
using TestSupport::Pipe;

std::string readSome(int descriptor, std::size_t most = 64) {
    std::string text(most, '\0');
    const auto count = read(descriptor, text.data(), text.size());
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}

/// Raises the soft limit on open file descriptors to `count`, or to the hard limit if that is lower. In a
/// shell on macOS, the soft limit is 256 by default.
void allowDescriptors(rlim_t count) {
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_cur < count) {
        limit.rlim_cur = std::min(count, limit.rlim_max);
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    }
}

TEST(ReadSource, firesOnItsQueueWhileThereIsSomethingToRead) {
    SerialQueue queue("test");
    const Pipe pipe;
    std::string got;
    Event five;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] {
        EXPECT_TRUE(queue.isCurrent());
        got += readSome(pipe.readEnd(), 1);
        five.signal();
    });
    source.resume();
    pipe.put("hello");
    ASSERT_TRUE(five.wait(5));
    queue.sync([&] { EXPECT_EQ(got, "hello"); });
}

TEST(ReadSource, firesForWhatWasThereBefore) {
    SerialQueue queue("test");
    const Pipe pipe;
    pipe.put("early");
    Event fired;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] {
        EXPECT_EQ(readSome(pipe.readEnd()), "early");
        fired.signal();
    });
    source.resume();
    EXPECT_TRUE(fired.wait());
}

TEST(ReadSource, firesAtTheEndOfTheStream) {
    SerialQueue queue("test");
    Pipe pipe;
    Event ended;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] {
        if (readSome(pipe.readEnd()).empty()) {
            source.cancel();
            ended.signal();
        }
    });
    source.resume();
    pipe.put("last words");
    pipe.closeWriteEnd();
    EXPECT_TRUE(ended.wait());
}

TEST(ReadSource, waitsForResume) {
    SerialQueue queue("test");
    const Pipe pipe;
    pipe.put("x");
    Event fired;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] {
        readSome(pipe.readEnd());
        fired.signal();
    });
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_EQ(fired.count(), 0U);
    source.resume();
    EXPECT_TRUE(fired.wait());
}

TEST(ReadSource, isSilentWhileSuspendedAndGoesOnAfterwards) {
    SerialQueue queue("test");
    const Pipe pipe;
    Event fired;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] {
        readSome(pipe.readEnd());
        fired.signal();
    });
    source.resume();
    queue.sync([&] {
        source.suspend();
        source.suspend();
    });
    pipe.put("x");
    // On Linux, the queue polls its file descriptors in each iteration of its loop, so run several
    // iterations.
    for (int turn = 0; turn < 10; ++turn) {
        queue.sync([] {});
    }
    EXPECT_EQ(fired.count(), 0U);
    source.resume();
    EXPECT_TRUE(fired.wait());
}

TEST(ReadSource, cancelIsFinalAndItsHandlerRunsOnceOnTheQueue) {
    SerialQueue queue("test");
    const Pipe pipe;
    std::atomic<int> events = 0;
    Event cancelled;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] { ++events; });
    source.setCancelHandler([&] {
        EXPECT_TRUE(queue.isCurrent());
        cancelled.signal();
    });
    source.resume();
    EXPECT_FALSE(source.isCancelled());
    source.cancel();
    EXPECT_TRUE(source.isCancelled());
    source.cancel();
    ASSERT_TRUE(cancelled.wait());
    const int before = events;
    pipe.put("x");
    source.resume();
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_EQ(events, before);
    EXPECT_EQ(cancelled.count(), 1U);
}

TEST(ReadSource, cancellingDoesNotInterruptARunningHandler) {
    SerialQueue queue("test");
    const Pipe pipe;
    std::vector<std::string> order;
    Event entered;
    Event mayLeave;
    Event cancelled;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] {
        entered.signal();
        EXPECT_TRUE(mayLeave.wait());
        order.emplace_back("event");
    });
    source.setCancelHandler([&] {
        order.emplace_back("cancel");
        cancelled.signal();
    });
    source.resume();
    pipe.put("x");
    ASSERT_TRUE(entered.wait());
    source.cancel();
    mayLeave.signal();
    ASSERT_TRUE(cancelled.wait());
    EXPECT_EQ(order, (std::vector<std::string>{"event", "cancel"}));
}

TEST(ReadSource, aSourceNeverResumedIsCancelledLikeAnyOther) {
    SerialQueue queue("test");
    const Pipe pipe;
    Event cancelled;
    ReadSource source(queue, pipe.readEnd());
    source.setCancelHandler([&] { cancelled.signal(); });
    source.cancel();
    EXPECT_TRUE(cancelled.wait());
}

TEST(ReadSource, itsEndCancels) {
    SerialQueue queue("test");
    Pipe pipe;
    Event closed;
    {
        ReadSource source(queue, pipe.readEnd());
        source.setCancelHandler([&closed, descriptor = pipe.takeReadEnd()] {
            EXPECT_EQ(close(descriptor), 0);
            closed.signal();
        });
        source.resume();
    }
    EXPECT_TRUE(closed.wait());
}

TEST(ReadSource, theQueuesEndCancels) {
    const Pipe pipe;
    const Pipe idle;
    Event cancelled;
    std::optional<SerialQueue> queue(std::in_place, "test");
    ReadSource source(*queue, pipe.readEnd());
    source.setCancelHandler([&] { cancelled.signal(); });
    source.resume();
    ReadSource neverResumed(*queue, idle.readEnd());
    neverResumed.setCancelHandler([&] { cancelled.signal(); });
    queue.reset();
    EXPECT_EQ(cancelled.count(), 2U) << "destroying the queue waits for the handlers";
    EXPECT_TRUE(source.isCancelled());
    source.suspend();
    source.resume();
    source.cancel();
}

TEST(ReadSource, releasesItsHandlersAfterTheCancelHandler) {
    SerialQueue queue("test");
    const Pipe pipe;
    const auto token = std::make_shared<int>(0);
    Event cancelled;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([token] {});
    source.setCancelHandler([token, &cancelled] { cancelled.signal(); });
    source.resume();
    EXPECT_EQ(token.use_count(), 3);
    source.cancel();
    ASSERT_TRUE(cancelled.wait());
    queue.sync([] {});
    EXPECT_EQ(token.use_count(), 1);
}

TEST(ReadSource, aHandlerMayDestroyItsOwnSource) {
    SerialQueue queue("test");
    const Pipe pipe;
    Event cancelled;
    auto source = std::make_unique<ReadSource>(queue, pipe.readEnd());
    const auto token = std::make_shared<int>(7);
    source->setEventHandler([&source, token] {
        source.reset();
        EXPECT_EQ(*token, 7) << "captures live until the handler returns";
    });
    source->setCancelHandler([&] { cancelled.signal(); });
    source->resume();
    pipe.put("x");
    EXPECT_TRUE(cancelled.wait());
}

TEST(ReadSource, hundredsOfIdleSourcesDoNotHideTheBusyOnes) {
    SerialQueue queue("test");
    constexpr std::size_t count = 300;
    ASSERT_NO_FATAL_FAILURE(allowDescriptors((2 * count) + 100));
    std::vector<std::unique_ptr<Pipe>> pipes;
    std::vector<std::unique_ptr<ReadSource>> sources;
    std::vector<int> fired(count);
    Event event;
    Event cancelled;
    for (std::size_t index = 0; index < count; ++index) {
        pipes.push_back(std::make_unique<Pipe>());
        sources.push_back(std::make_unique<ReadSource>(queue, pipes.back()->readEnd()));
        // The handler may run while `pipes` is still growing, so it captures the descriptor by value.
        sources.back()->setEventHandler([&fired, &event, index, descriptor = pipes.back()->readEnd()] {
            readSome(descriptor);
            ++fired[index];
            event.signal();
        });
        sources.back()->setCancelHandler([&] { cancelled.signal(); });
        sources.back()->resume();
    }
    // Fire every seventh source, one at a time, while all other sources are idle.
    std::size_t expected = 0;
    for (int turn = 0; turn < 5; ++turn) {
        for (std::size_t index = 0; index < count; index += 7) {
            pipes[index]->put("x");
            ASSERT_TRUE(event.wait(++expected));
        }
    }
    // Fire all sources at the same time.
    for (const auto& pipe : pipes) {
        pipe->put("x");
    }
    ASSERT_TRUE(event.wait(expected + count));
    queue.sync([&] {
        for (std::size_t index = 0; index < count; ++index) {
            EXPECT_EQ(fired[index], index % 7 == 0 ? 6 : 1) << index;
        }
    });
    // Cancel half of the sources explicitly, some of them while they are suspended. Their destructor cancels
    // the other half.
    for (std::size_t index = 0; index < count; index += 2) {
        if (index % 4 == 0) {
            sources[index]->suspend();
        }
        sources[index]->cancel();
    }
    sources.clear();
    EXPECT_TRUE(cancelled.wait(count));
    queue.sync([] {});
    EXPECT_EQ(cancelled.count(), count);
}

TEST(ReadSource, descriptorsMayBeClosedAndUsedAgainAtOnce) {
    SerialQueue queue("test");
    std::atomic<int> rounds = 0;
    for (int turn = 0; turn < 200; ++turn) {
        Pipe pipe;
        Event fired;
        auto source = std::make_unique<ReadSource>(queue, pipe.readEnd());
        source->setEventHandler([&] {
            readSome(pipe.readEnd());
            fired.signal();
        });
        Event closed;
        source->setCancelHandler([&] {
            pipe.closeReadEnd();
            closed.signal();
        });
        source->resume();
        pipe.put("x");
        ASSERT_TRUE(fired.wait());
        source.reset();
        ASSERT_TRUE(closed.wait());
        ++rounds;
    }
    EXPECT_EQ(rounds, 200);
}

TEST(ReadSource, mayBeSteeredFromAnyThread) {
    SerialQueue queue("test");
    const Pipe pipe;
    ReadSource source(queue, pipe.readEnd());
    source.setEventHandler([&] { readSome(pipe.readEnd()); });
    Event cancelled;
    source.setCancelHandler([&] { cancelled.signal(); });
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int thread = 0; thread < 3; ++thread) {
        threads.emplace_back([&, thread] {
            for (int turn = 0; turn < 300; ++turn) {
                pipe.put("x");
                if (turn % 3 == thread) {
                    source.suspend();
                } else {
                    source.resume();
                }
            }
            source.cancel();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(cancelled.wait());
    queue.sync([] {});
    EXPECT_EQ(cancelled.count(), 1U);
}

} // namespace
