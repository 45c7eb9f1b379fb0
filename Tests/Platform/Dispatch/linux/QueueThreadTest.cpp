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
#include <chrono>
#include <csignal>
#include <ctime>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

// Tests that are specific to the Linux implementation, in which each queue has its own thread.

namespace {

using Platform::ReadSource;
using Platform::SerialQueue;
using TestSupport::Event;
using TestSupport::eventually;
using TestSupport::openDescriptors;
using TestSupport::Pipe;
using TestSupport::runningThreads;

pid_t threadOf(SerialQueue& queue) {
    pid_t thread = 0;
    queue.sync([&] { thread = gettid(); });
    return thread;
}

/// Waits until the kernel reports that a thread of this process is sleeping. Returns false on a timeout.
[[nodiscard]] bool fallsAsleep(pid_t thread) {
    return eventually([&] {
        std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
        std::string line;
        return std::getline(file, line) && line.contains(") S ");
    });
}

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
    ASSERT_TRUE(ran.wait(2)) << "work submitted before the release still runs";
    EXPECT_TRUE(eventually([&] { return runningThreads() == threads && openDescriptors() == descriptors; }));
}

TEST(SerialQueueThread, leavesNoThreadAndNoDescriptor) {
    const auto threads = runningThreads();
    const auto descriptors = openDescriptors();
    for (int turn = 0; turn < 50; ++turn) {
        SerialQueue queue("test");
        queue.sync([] {});
        // The thread of the previous iteration may remain in /proc for a moment after it has been joined.
        EXPECT_TRUE(eventually([&] { return runningThreads() == threads + 1; }));
    }
    EXPECT_TRUE(eventually([&] { return runningThreads() == threads; }));
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST(SerialQueueThread, sleepsWhileThereIsNothingToDo) {
    using std::chrono::milliseconds;
    SerialQueue queue("test");
    ASSERT_TRUE(fallsAsleep(threadOf(queue)));
    const auto processorTime = [] {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    std::chrono::nanoseconds used{};
    Event done;
    queue.sync([&] {
        used = -processorTime();
        queue.asyncAfter(milliseconds(50), [&] {
            used += processorTime();
            done.signal();
        });
    });
    ASSERT_TRUE(done.wait());
    EXPECT_LT(used, milliseconds(10));
}

TEST(SerialQueueThread, doesNotSleepWhileWorkIsWaiting) {
    SerialQueue queue("test");
    const auto sleeps = [] {
        rusage usage = {};
        getrusage(RUSAGE_THREAD, &usage);
        return usage.ru_nvcsw;
    };
    long before = 0;
    long after = 0;
    int left = 200;
    Event done;
    const std::function<void()> next = [&] {
        if (left == 200) {
            before = sleeps();
        }
        if (--left > 0) {
            queue.async(next);
        } else {
            after = sleeps();
            done.signal();
        }
    };
    queue.async(next);
    ASSERT_TRUE(done.wait());
    EXPECT_LT(after - before, 100);
}

TEST(SerialQueueThread, isWokenForDelayedWork) {
    SerialQueue queue("test");
    ASSERT_TRUE(fallsAsleep(threadOf(queue)));
    Event done;
    queue.asyncAfter(std::chrono::milliseconds(1), [&] { done.signal(); });
    EXPECT_TRUE(done.wait());
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
    GTEST_SKIP() << "the sanitizer needs descriptors to inspect thrown exceptions";
#endif
#endif
    rlimit previous = {};
    getrlimit(RLIMIT_NOFILE, &previous);
    const rlimit none = {.rlim_cur = 0, .rlim_max = previous.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_THROW(SerialQueue("test"), std::system_error);
    setrlimit(RLIMIT_NOFILE, &previous);
}

TEST(SerialQueueThread, cannotBeMadeWithoutAThread) {
    pthread_attr_t previous;
    ASSERT_EQ(pthread_getattr_default_np(&previous), 0);
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_getattr_default_np(&attributes), 0);
    // A stack larger than the address space makes the creation of a thread fail.
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{1} << 60U), 0);
    ASSERT_EQ(pthread_setattr_default_np(&attributes), 0);
    EXPECT_THROW(SerialQueue("test"), std::system_error);
    EXPECT_EQ(pthread_setattr_default_np(&previous), 0);
    pthread_attr_destroy(&attributes);
    pthread_attr_destroy(&previous);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGINT), 0) << "the caller's signal mask is restored";
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
        "a descriptor was closed before its read source was cancelled, on queue test");
}

} // namespace
