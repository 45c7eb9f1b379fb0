#include "KeyloftCore/RelayListener.h"
#include "Tests/Platform/Dispatch/Pipe.h"
#include "Tests/Support/Waiting.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <string>
#include <thread>

namespace {

using KeyloftCore::RelayListener;
using TestSupport::Pipe;

std::string readToEnd(int descriptor) {
    std::string all;
    std::array<char, 4096> buffer = {};
    for (;;) {
        const auto count = read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return all;
        }
        all.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

TEST(WriteAll, nothingIsWrittenAtOnce) {
    EXPECT_TRUE(RelayListener::writeAll(-1, ""));
    EXPECT_FALSE(RelayListener::writeAll(-1, "x"));
    EXPECT_EQ(errno, EBADF);
}

TEST(WriteAll, writesToPipes) {
    Pipe pipe;
    const std::string large(1 << 20, 'x');
    std::string got;
    std::thread reader([&] { got = readToEnd(pipe.readEnd()); });
    EXPECT_TRUE(RelayListener::writeAll(pipe.writeEnd(), large));
    pipe.closeWriteEnd();
    reader.join();
    EXPECT_EQ(got, large);
}

TEST(WriteAll, aPipeThatNobodyReadsIsAnErrorAndNoSignal) {
    ASSERT_NE(signal(SIGPIPE, SIG_DFL), SIG_ERR);
    Pipe pipe;
    pipe.closeReadEnd();
    EXPECT_FALSE(RelayListener::writeAll(pipe.writeEnd(), "x"));
    EXPECT_EQ(errno, EPIPE);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0) << "the signal mask is restored";
}

TEST(WriteAll, aSocketThatNobodyReadsIsAnErrorAndNoSignal) {
    ASSERT_NE(signal(SIGPIPE, SIG_DFL), SIG_ERR);
    std::array<int, 2> ends = {};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    close(ends[1]);
    EXPECT_FALSE(RelayListener::writeAll(ends[0], "x"));
    EXPECT_EQ(errno, EPIPE);
    close(ends[0]);
}

TEST(WriteAll, aSignalThatWaitedBeforeStillWaits) {
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    pthread_kill(pthread_self(), SIGPIPE);
    Pipe pipe;
    pipe.closeReadEnd();
    EXPECT_FALSE(RelayListener::writeAll(pipe.writeEnd(), "x"));
    const timespec noTime = {};
    EXPECT_EQ(sigtimedwait(&pipeSignal, nullptr, &noTime), SIGPIPE);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

TEST(WriteAll, aFullPipeThatMayNotBlockIsAnError) {
    const Pipe pipe;
    ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, O_NONBLOCK), 0);
    EXPECT_FALSE(RelayListener::writeAll(pipe.writeEnd(), std::string(1 << 20, 'x')));
    EXPECT_EQ(errno, EAGAIN);
}

TEST(WriteAll, aStormOfSignalsInterruptsNothing) {
    struct sigaction action = {};
    action.sa_handler = [](int) {}; // without SA_RESTART, so that calls fail with EINTR
    struct sigaction previous = {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &previous), 0);
    for (const bool isSocket : {false, true}) {
        std::array<int, 2> ends = {};
        if (isSocket) {
            ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        } else {
            ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        }
        const std::string large(4 << 20, 'x');
        std::string got;
        std::atomic<bool> over = false;
        std::thread storm([&over, target = pthread_self()] {
            while (!over) {
                pthread_kill(target, SIGUSR1);
                std::this_thread::sleep_for(std::chrono::microseconds(20));
            }
        });
        std::thread reader([&] { got = readToEnd(ends[0]); });
        EXPECT_TRUE(RelayListener::writeAll(ends[1], large));
        over = true;
        storm.join();
        close(ends[1]);
        reader.join();
        close(ends[0]);
        EXPECT_EQ(got.size(), large.size());
    }
    sigaction(SIGUSR1, &previous, nullptr);
}

} // namespace
