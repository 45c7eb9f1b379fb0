// Tests that a well-behaved peer is served regardless of what hostile peers do.

#include "Tests/KeyloftCore/RelayTestSupport.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace std::string_view_literals;
using TestSupport::ask;
using TestSupport::eventually;
using TestSupport::frame;
using TestSupport::openDescriptors;
using TestSupport::RawPeer;
using TestSupport::RelayTest;
using Clock = std::chrono::steady_clock;

class HostilePeerTest : public RelayTest {
protected:
    void expectService() { EXPECT_EQ(ask(path, "honest"), "echo honest"); }
};

double processorSeconds() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Exhausts the file descriptors of the process for the lifetime of the object. Lowers the limit first, so
/// that only a few descriptors have to be opened.
class DescriptorFamine {
public:
    DescriptorFamine() {
        getrlimit(RLIMIT_NOFILE, &previous_);
        const int next = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
        close(next);
        const rlimit few = {.rlim_cur = static_cast<rlim_t>(next) + 16, .rlim_max = previous_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        for (;;) {
            const int taken = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
            if (taken < 0) {
                return;
            }
            taken_.push_back(taken);
        }
    }
    DescriptorFamine(const DescriptorFamine&) = delete;
    DescriptorFamine& operator=(const DescriptorFamine&) = delete;
    ~DescriptorFamine() { end(); }

    void end() {
        for (const int taken : taken_) {
            close(taken);
        }
        taken_.clear();
        setrlimit(RLIMIT_NOFILE, &previous_);
    }

private:
    rlimit previous_ = {};
    std::vector<int> taken_;
};

TEST_F(HostilePeerTest, aRequestByteByByteIsAnswered) {
    startEcho();
    RawPeer peer(path);
    for (const char byte : frame("slow")) {
        ASSERT_TRUE(peer.send({&byte, 1}));
        expectService();
    }
    EXPECT_EQ(peer.receiveAll(), frame("echo slow"));
}

TEST_F(HostilePeerTest, halfAFrameAndSilenceHoldsNobodyUp) {
    startEcho();
    const RawPeer prefix(path);
    ASSERT_TRUE(prefix.send("\x05\0"sv));
    const RawPeer body(path);
    ASSERT_TRUE(body.send("\x05\0\0\0ab"sv));
    const RawPeer large(path);
    ASSERT_TRUE(large.send("\0\0\x10\0"sv));
    expectService();
    EXPECT_EQ(requests.count(), 1U);
}

TEST_F(HostilePeerTest, anOversizedPrefixIsDisconnectedWithoutAReply) {
    startEcho();
    for (const auto prefix : {"\x01\0\x10\0"sv, "\xFF\xFF\xFF\xFF"sv, "\0\0\0\x80"sv}) {
        RawPeer peer(path);
        ASSERT_TRUE(peer.send(prefix));
        EXPECT_EQ(peer.receiveAll(), "");
        EXPECT_EQ(peer.error(), 0);
    }
    expectService();
    EXPECT_EQ(requests.count(), 1U);
}

TEST_F(HostilePeerTest, anOversizedPrefixAfterAGoodFrameLosesBoth) {
    startEcho();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("good") + "\xFF\xFF\xFF\xFF"));
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(requests.count(), 0U);
    expectService();
}

TEST_F(HostilePeerTest, anOversizedPrefixAfterARequestEndsItsConnection) {
    startKeeping();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("good")));
    ASSERT_TRUE(requests.wait());
    ASSERT_TRUE(peer.send("\xFF\xFF\xFF\xFF"));
    EXPECT_EQ(peer.receiveAll(), "");
    keptReply(0)("too late");
}

TEST_F(HostilePeerTest, twoFramesInOneWriteGetOneReply) {
    startEcho();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("one") + frame("two")));
    EXPECT_EQ(peer.receiveAll(), frame("echo one"));
    EXPECT_EQ(requests.count(), 1U);
}

TEST_F(HostilePeerTest, peersThatLeaveBeforeTheReplyDoNoHarm) {
    startEcho();
    for (int turn = 0; turn < 200; ++turn) {
        const RawPeer peer(path);
        ASSERT_TRUE(peer.send(frame("bye")));
    }
    expectService();
}

TEST_F(HostilePeerTest, peersThatLeaveAtAnyMomentDoNoHarm) {
    startEcho();
    std::mt19937 random(11); // NOLINT: the same sequence every time is what is wanted
    const auto whole = frame("leaving") + frame("again");
    for (int turn = 0; turn < 300; ++turn) {
        const RawPeer peer(path);
        ASSERT_TRUE(peer.send(std::string_view(whole).substr(0, random() % whole.size())));
        if (random() % 2 == 0) {
            peer.endSending();
        }
    }
    expectService();
}

TEST_F(HostilePeerTest, aPeerThatNeverReadsIsGivenUpAfterThreeSeconds) {
    listener->listen(path, [this](const std::string& request, const RelayListener::Reply& reply) {
        reply(request == "large" ? std::string(1 << 20, 'x') : "echo " + request);
        requests.signal();
    });
    const RawPeer stuck(path);
    const auto begin = Clock::now();
    ASSERT_TRUE(stuck.send(frame("large")));
    ASSERT_TRUE(requests.wait());
    expectService();
    const auto waited = Clock::now() - begin;
    EXPECT_GE(waited, std::chrono::milliseconds(2900));
    // The next peer would wait for six seconds if the listener tried to write again after the first write
    // timed out.
    EXPECT_LT(waited, std::chrono::milliseconds(5500));
    expectService();
    EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(5800));
}

TEST_F(HostilePeerTest, aPeerThatReadsSlowlyIsGivenUpAfterThreeSecondsInAll) {
    listener->listen(path, [this](const std::string&, const RelayListener::Reply& reply) {
        reply(std::string(1 << 20, 'x'));
        requests.signal();
    });
    const RawPeer slow(path);
    const auto begin = Clock::now();
    ASSERT_TRUE(slow.send(frame("large")));
    ASSERT_TRUE(requests.wait());
    // Each read by the peer frees buffer space, so the listener never waits long for a single write. Reading
    // the whole reply would take 10 seconds.
    std::atomic<bool> over = false;
    std::thread reading([&] {
        std::vector<char> buffer(20'000);
        while (!over && recv(slow.descriptor(), buffer.data(), buffer.size(), 0) > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
    });
    listener->close();
    const auto waited = Clock::now() - begin;
    over = true;
    reading.join();
    EXPECT_GE(waited, std::chrono::milliseconds(2900));
    EXPECT_LT(waited, std::chrono::milliseconds(5500));
}

TEST_F(HostilePeerTest, hundredsOfIdleConnectionsHoldNobodyUp) {
    constexpr std::size_t count = 500;
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const auto previous = limit;
    limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, 2048));
    setrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < 2 * count + 100) {
        GTEST_SKIP() << "the limit of " << limit.rlim_cur << " descriptors is too low";
    }
    startEcho();
    {
        const auto before = openDescriptors();
        std::vector<RawPeer> idle;
        for (std::size_t peer = 0; peer < count; ++peer) {
            idle.emplace_back(path);
            if (peer % 3 == 0) {
                ASSERT_TRUE(idle.back().send("\x05\0"sv));
            }
        }
        EXPECT_TRUE(eventually([&] { return openDescriptors() >= before + 2 * count; }));
        for (int turn = 0; turn < 50; ++turn) {
            expectService();
        }
        // Idle connections are still served and can complete their requests.
        for (std::size_t peer = 0; peer < count; peer += 99) {
            ASSERT_TRUE(idle[peer].send(peer % 3 == 0 ? std::string("\0\0"
                                                                    "hello",
                                                                    7)
                                                      : frame("hello")));
            EXPECT_EQ(idle[peer].receiveAll(), frame("echo hello")) << peer;
        }
        const auto processor = processorSeconds();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_LT(processorSeconds() - processor, 0.05) << "idle connections must not keep the queue busy";
    }
    expectService();
    setrlimit(RLIMIT_NOFILE, &previous);
}

TEST_F(HostilePeerTest, outOfDescriptorsAcceptingPausesUntilAConnectionCloses) {
    startEcho();
    const auto before = openDescriptors();
    // The listener retries after one second in any case. Only an earlier reply shows that the listener
    // resumed because a connection was closed. On a busy machine the reply may be late, so try several times.
    bool answeredInTime = false;
    for (int attempt = 0; attempt < 5 && !answeredInTime; ++attempt) {
        RawPeer open(path);
        ASSERT_TRUE(open.send("\x05\0"sv));
        expectService();
        // A later connection has been served, so `open` has been accepted. Once the other connections are
        // closed, only the two ends of `open` use additional descriptors.
        ASSERT_TRUE(eventually([&] { return openDescriptors() == before + 2; }));
        std::vector<RawPeer> waiting(2);
        const auto begin = Clock::now();
        const DescriptorFamine famine;
        for (const auto& peer : waiting) {
            ASSERT_TRUE(peer.connect(path));
            ASSERT_TRUE(peer.send(frame("hungry")));
        }
        const auto answered = requests.count();
        const auto processor = processorSeconds();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_LT(processorSeconds() - processor, 0.1) << "waiting for a descriptor must not be a busy loop";
        EXPECT_EQ(requests.count(), answered);

        open.close(); // frees the descriptors of both ends, because the listener then closes its end
        for (auto& peer : waiting) {
            EXPECT_EQ(peer.receiveAll(), frame("echo hungry"));
        }
        answeredInTime = Clock::now() - begin < std::chrono::seconds(1);
    }
    EXPECT_TRUE(answeredInTime);
    expectService();
}

TEST_F(HostilePeerTest, descriptorsThatSomebodyElseGivesBackAreNoticedToo) {
    startEcho();
    const auto before = openDescriptors();
    expectService();
    ASSERT_TRUE(eventually([&] { return openDescriptors() == before; }));
    RawPeer peer;
    {
        DescriptorFamine famine;
        ASSERT_TRUE(peer.connect(path));
        ASSERT_TRUE(peer.send(frame("patient")));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(requests.count(), 1U);
        famine.end();
        EXPECT_EQ(peer.receiveAll(), frame("echo patient"));
    }
}

TEST_F(HostilePeerTest, closingWhileAcceptingIsPausedIsNoProblem) {
    startEcho();
    const RawPeer peer;
    const DescriptorFamine famine;
    ASSERT_TRUE(peer.connect(path));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    listener->close();
}

TEST_F(HostilePeerTest, noiseIsNeverARequestThatNobodySent) {
    startEcho();
    std::mt19937 random(13); // NOLINT: the same sequence every time is what is wanted
    for (int turn = 0; turn < 100; ++turn) {
        RawPeer peer(path);
        std::string noise(4 + random() % 200, '\0');
        for (auto& byte : noise) {
            byte = static_cast<char>(random() % 256);
        }
        // Make the announced payload length exceed the limit, regardless of the random bytes.
        noise[3] = static_cast<char>(random() % 255 + 1);
        peer.send(noise);
        EXPECT_EQ(peer.receiveAll(), "");
    }
    EXPECT_EQ(requests.count(), 0U);
    expectService();
}

} // namespace
