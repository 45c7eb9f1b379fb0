#include "Platform/Dispatch/ReadSource.h"
#include "Platform/Dispatch/SerialQueue.h"
#include "Tests/Platform/Dispatch/Pipe.h"
#include "Tests/Support/ProcessCounts.h"
#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

// What holds because each queue has a thread of its own that takes turns.

namespace {

using Platform::ReadSource;
using Platform::SerialQueue;
using TestSupport::Event;
using TestSupport::eventually;
using TestSupport::openDescriptors;
using TestSupport::Pipe;
using TestSupport::runningThreads;

TEST(SerialQueueThread, namesItsThreadAfterTheLabelsEnd) {
    SerialQueue queue("velde.orvane.keyloft.a-name-longer-than-the-kernel-keeps");
    std::array<char, 32> name = {};
    queue.sync([&] { pthread_getname_np(pthread_self(), name.data(), name.size()); });
    EXPECT_STREQ(name.data(), "a-name-longer-t");
}

TEST(SerialQueueThread, mayBeReleasedOnItself) {
    const auto threads = runningThreads();
    const auto descriptors = openDescriptors();
    Event ran;
    auto queue = std::make_shared<SerialQueue>("test");
    auto* handle = queue.get();
    handle->async([&ran, queue = std::move(queue)]() mutable {
        queue->async([&ran] { ran.signal(); });
        queue.reset();
        ran.signal();
    });
    ASSERT_TRUE(ran.wait(2)) << "work handed over before the release is still run";
    EXPECT_TRUE(eventually([&] { return runningThreads() == threads && openDescriptors() == descriptors; }));
}

TEST(SerialQueueThread, leavesNoThreadAndNoDescriptor) {
    const auto threads = runningThreads();
    const auto descriptors = openDescriptors();
    for (int turn = 0; turn < 50; ++turn) {
        SerialQueue queue("test");
        queue.sync([] {});
        // A thread that has been waited for, the turn before's, may still stand in the list for a moment.
        EXPECT_TRUE(eventually([&] { return runningThreads() == threads + 1; }));
    }
    EXPECT_TRUE(eventually([&] { return runningThreads() == threads; }));
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST(SerialQueueThread, leavesTheProcessesSignalsToOtherThreads) {
    SerialQueue queue("test");
    sigset_t mask;
    queue.sync([&] { pthread_sigmask(SIG_SETMASK, nullptr, &mask); });
    EXPECT_EQ(sigismember(&mask, SIGINT), 1);
    EXPECT_EQ(sigismember(&mask, SIGUSR1), 1);
    EXPECT_EQ(sigismember(&mask, SIGSEGV), 0);
}

TEST(SerialQueueThread, cannotBeMadeWithoutADescriptor) {
#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
    GTEST_SKIP() << "the sanitizer needs descriptors of its own to look at what is thrown";
#endif
#endif
    rlimit previous = {};
    getrlimit(RLIMIT_NOFILE, &previous);
    const rlimit none = {.rlim_cur = 0, .rlim_max = previous.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_THROW(SerialQueue("test"), std::system_error);
    setrlimit(RLIMIT_NOFILE, &previous);
}

TEST(ReadSourceThread, workOfAHandlerRunsBeforeTheNextHandler) {
    SerialQueue queue("test");
    const Pipe first;
    const Pipe second;
    std::vector<std::string> order;
    Event done;
    const auto handler = [&](int descriptor) {
        return [&, descriptor] {
            std::array<char, 64> bytes = {};
            EXPECT_EQ(read(descriptor, bytes.data(), bytes.size()), 1);
            order.emplace_back("event");
            queue.async([&] {
                order.emplace_back("work");
                done.signal();
            });
        };
    };
    ReadSource one(queue, first.readEnd());
    one.setEventHandler(handler(first.readEnd()));
    ReadSource two(queue, second.readEnd());
    two.setEventHandler(handler(second.readEnd()));
    queue.sync([&] {
        first.put("x");
        second.put("x");
        one.resume();
        two.resume();
    });
    ASSERT_TRUE(done.wait(2));
    EXPECT_EQ(order, (std::vector<std::string>{"event", "work", "event", "work"}));
}

TEST(ReadSourceThread, aSourceCancelledByAnothersHandlerInTheSameTurnStaysSilent) {
    SerialQueue queue("test");
    const Pipe first;
    const Pipe second;
    int events = 0;
    ReadSource one(queue, first.readEnd());
    ReadSource two(queue, second.readEnd());
    one.setEventHandler([&] {
        ++events;
        one.cancel();
        two.cancel();
    });
    two.setEventHandler([&] {
        ++events;
        one.cancel();
        two.cancel();
    });
    queue.sync([&] {
        first.put("x");
        second.put("x");
        one.resume();
        two.resume();
    });
    queue.sync([] {});
    queue.sync([] {});
    queue.sync([&] { EXPECT_EQ(events, 1); });
}

TEST(ReadSourceDeathTest, aDescriptorClosedTooEarlyStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SerialQueue queue("test");
            Pipe pipe;
            ReadSource source(queue, pipe.readEnd());
            source.setEventHandler([] {});
            pipe.closeReadEnd();
            source.resume();
            queue.sync([] {});
            queue.sync([] {});
            queue.sync([] {});
        },
        "closed before its read source was cancelled");
}

} // namespace
