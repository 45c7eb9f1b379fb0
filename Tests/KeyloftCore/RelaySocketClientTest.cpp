#include "KeyloftCore/RelaySocketClient.h"

#include "KeyloftCore/RelaySocketError.h"
#include "Tests/KeyloftCore/RelayTestSupport.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <thread>

namespace {

using namespace std::string_view_literals;
using KeyloftCore::RelaySocketClient;
using KeyloftCore::RelaySocketError;
using TestSupport::Event;
using TestSupport::eventually;
using TestSupport::frame;
using TestSupport::longWait;
using TestSupport::RawPeer;
using TestSupport::TemporaryDirectory;
using TestSupport::WithoutStandardInput;
using Clock = std::chrono::steady_clock;

/// A server that accepts one connection and passes it to `serve` on a separate thread.
class PlainServer {
public:
    using Serve = std::function<void(int connection)>;

    PlainServer(const std::string& path, Serve serve) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(listening_.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        EXPECT_EQ(listen(listening_.descriptor(), 4), 0);
        thread_ = std::thread([this, serve = std::move(serve)] {
            const int connection = accept4(listening_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
            serve(connection);
            close(connection);
        });
    }
    PlainServer(const PlainServer&) = delete;
    PlainServer& operator=(const PlainServer&) = delete;
    ~PlainServer() { thread_.join(); }

private:
    RawPeer listening_;
    std::thread thread_;
};

void put(int descriptor, std::string_view bytes) {
    EXPECT_EQ(send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
}

class RelaySocketClientTest : public testing::Test {
protected:
    std::optional<RelaySocketError> connectError(const std::string& to) {
        try {
            RelaySocketClient::connect(to).close();
        } catch (const RelaySocketError& error) {
            return error;
        }
        return std::nullopt;
    }

    const TemporaryDirectory directory;
    const std::string path = directory / "relay.sock";
};

TEST_F(RelaySocketClientTest, connectingWhereNobodyListensFails) {
    const auto before = TestSupport::openDescriptors();
    EXPECT_EQ(connectError(path), RelaySocketError::syscall("connect", ENOENT));
    TestSupport::writeContents(path, "no socket");
    EXPECT_EQ(connectError(path), RelaySocketError::syscall("connect", ECONNREFUSED));
    EXPECT_EQ(connectError(directory / "no/such/place"), RelaySocketError::syscall("connect", ENOENT));
    EXPECT_EQ(connectError(""), RelaySocketError::syscall("connect", ENOENT));
    EXPECT_EQ(connectError("/" + std::string(103, 'x')), RelaySocketError::pathTooLong());
    EXPECT_EQ(TestSupport::openDescriptors(), before);
}

TEST_F(RelaySocketClientTest, anEmptyPathNeverMeansANameOutsideTheFileSystem) {
    // The kernel would interpret an empty path as the abstract socket name that consists of 107 NUL bytes.
    const RawPeer abstract;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_EQ(bind(abstract.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(abstract.descriptor(), 4), 0);
    EXPECT_EQ(connectError(""), RelaySocketError::syscall("connect", ENOENT));
}

TEST_F(RelaySocketClientTest, copiesShareTheDescriptor) {
    const PlainServer server(path, [](int connection) { put(connection, frame("x")); });
    const auto client = RelaySocketClient::connect(path);
    const auto copy = client; // NOLINT: the copy is what is tested
    EXPECT_EQ(copy.fd(), client.fd());
    EXPECT_EQ(copy.readFrame(longWait), "x");
    client.close();
}

TEST_F(RelaySocketClientTest, connectsWithoutStandardInput) {
    const PlainServer server(path, [](int connection) { put(connection, frame("x")); });
    const WithoutStandardInput socketIsZero;
    const auto client = RelaySocketClient::connect(path);
    EXPECT_EQ(client.fd(), 0);
    EXPECT_EQ(client.readFrame(longWait), "x");
    client.close();
}

TEST_F(RelaySocketClientTest, returnsTheFirstFrameOnly) {
    const PlainServer server(path, [](int connection) { put(connection, frame("one") + frame("two")); });
    const auto client = RelaySocketClient::connect(path);
    EXPECT_EQ(client.readFrame(longWait), "one");
    EXPECT_EQ(client.readFrame(longWait), std::nullopt) << "the second came with the first and is dropped";
    client.close();
}

TEST_F(RelaySocketClientTest, aReplyInManySmallWritesComesWhole) {
    const PlainServer server(path, [](int connection) {
        for (const char byte : frame("a reply byte by byte")) {
            put(connection, {&byte, 1});
            std::this_thread::yield();
        }
    });
    const auto client = RelaySocketClient::connect(path);
    EXPECT_EQ(client.readFrame(longWait), "a reply byte by byte");
    client.close();
}

TEST_F(RelaySocketClientTest, aServerThatClosesWithoutAReplyIsNoReply) {
    for (const auto bytes : {""sv, "\x05\0"sv, "\x05\0\0\0abc"sv}) {
        {
            const PlainServer server(path, [&](int connection) { put(connection, bytes); });
            const auto client = RelaySocketClient::connect(path);
            EXPECT_EQ(client.readFrame(longWait), std::nullopt);
            client.close();
        }
        unlink(path.c_str());
    }
}

TEST_F(RelaySocketClientTest, anOversizedReplyIsNoReplyWithoutWaitingForIt) {
    Event read;
    const PlainServer server(path, [&](int connection) {
        put(connection, "\x01\0\x10\0"sv);
        EXPECT_TRUE(read.wait());
    });
    const auto client = RelaySocketClient::connect(path);
    EXPECT_EQ(client.readFrame(0), std::nullopt);
    read.signal();
    client.close();
}

TEST_F(RelaySocketClientTest, aSilentServerIsNoReplyAfterTheTimeout) {
    Event read;
    const PlainServer server(path, [&](int) { EXPECT_TRUE(read.wait()); });
    const auto client = RelaySocketClient::connect(path);
    const auto begin = Clock::now();
    EXPECT_EQ(client.readFrame(0.05), std::nullopt);
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(50));
    read.signal();
    client.close();
}

TEST_F(RelaySocketClientTest, aNegativeTimeoutReadsNothingAndATinyOneEnds) {
    Event mayReply;
    const PlainServer server(path, [&](int connection) {
        EXPECT_TRUE(mayReply.wait());
        put(connection, frame("x"));
    });
    const auto client = RelaySocketClient::connect(path);
    for (const double timeout : {-1.5, -0.5, -1e-7, 1e-7}) {
        EXPECT_EQ(client.readFrame(timeout), std::nullopt);
    }
    mayReply.signal();
    EXPECT_EQ(client.readFrame(longWait), "x");
    client.close();
}

TEST_F(RelaySocketClientTest, theTimeoutLimitsEachWaitAndNotTheWhole) {
    const PlainServer server(path, [](int connection) {
        for (const char byte : frame("dripping")) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            put(connection, {&byte, 1});
        }
    });
    const auto client = RelaySocketClient::connect(path);
    const auto begin = Clock::now();
    // The client waits 100 ms for each of the twelve bytes. The timeout of one second applies to each wait,
    // not to their sum.
    EXPECT_EQ(client.readFrame(1), "dripping");
    EXPECT_GE(Clock::now() - begin, std::chrono::seconds(1));
    client.close();
}

TEST_F(RelaySocketClientTest, noTimeoutIsNoLimit) {
    Event tooEarly;
    const PlainServer server(path, [&](int connection) {
        EXPECT_TRUE(tooEarly.wait());
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        put(connection, frame("late"));
    });
    const auto client = RelaySocketClient::connect(path);
    // The timeout of the first call must not apply to the second call.
    EXPECT_EQ(client.readFrame(0.01), std::nullopt);
    tooEarly.signal();
    EXPECT_EQ(client.readFrame(0), "late");
    client.close();
}

TEST_F(RelaySocketClientTest, writingToAServerThatHasGoneIsAnErrorAndNoSignal) {
    ASSERT_NE(signal(SIGPIPE, SIG_DFL), SIG_ERR);
    Event closed;
    const PlainServer server(path, [&](int connection) {
        shutdown(connection, SHUT_RDWR);
        closed.signal();
    });
    const auto client = RelaySocketClient::connect(path);
    ASSERT_TRUE(closed.wait());
    try {
        client.writeFrame("x");
        ADD_FAILURE() << "the peer is gone, so the write should fail";
    } catch (const RelaySocketError& error) {
        EXPECT_EQ(error, RelaySocketError::syscall("write", EPIPE));
    }
    EXPECT_EQ(client.readFrame(longWait), std::nullopt);
    client.close();
}

TEST_F(RelaySocketClientTest, sendsFramesBeyondTheLimit) {
    std::string received;
    {
        const PlainServer server(path, [&](int connection) {
            std::string buffer(65'536, '\0');
            for (;;) {
                const auto count = read(connection, buffer.data(), buffer.size());
                if (count <= 0) {
                    return;
                }
                received.append(buffer.data(), static_cast<std::size_t>(count));
            }
        });
        const auto client = RelaySocketClient::connect(path);
        client.writeFrame(std::string(2 << 20, 'x'));
        client.close();
    }
    EXPECT_EQ(received, frame(std::string(2 << 20, 'x')));
}

TEST_F(RelaySocketClientTest, aStormOfSignalsInterruptsNothing) {
    struct sigaction action = {};
    action.sa_handler = [](int) {}; // without SA_RESTART, so that calls fail with EINTR
    struct sigaction previous = {};
    ASSERT_EQ(sigaction(SIGUSR1, &action, &previous), 0);
    const std::string large(3 << 20, 'y');
    {
        std::atomic<int> signals = 0;
        const PlainServer server(path, [&](int connection) {
            // Receive and send in small pieces, so that the client blocks in write and read many times.
            std::string taken;
            std::string buffer(16'384, '\0');
            while (taken.size() < large.size() + 4) {
                const auto count = read(connection, buffer.data(), buffer.size());
                if (count <= 0) {
                    break;
                }
                taken.append(buffer.data(), static_cast<std::size_t>(count));
            }
            EXPECT_TRUE(taken == frame(large)) << taken.size();
            EXPECT_TRUE(eventually([&] { return signals > 100; }));
            for (const char byte : frame(std::string(300, 'z'))) {
                std::this_thread::sleep_for(std::chrono::microseconds(100));
                put(connection, {&byte, 1});
            }
        });
        std::atomic<bool> over = false;
        std::thread storm([&over, &signals, target = pthread_self()] {
            while (!over) {
                pthread_kill(target, SIGUSR1);
                ++signals;
                std::this_thread::sleep_for(std::chrono::microseconds(20));
            }
        });
        const auto client = RelaySocketClient::connect(path);
        client.writeFrame(large);
        EXPECT_EQ(client.readFrame(longWait), std::string(300, 'z'));
        over = true;
        storm.join();
        client.close();
    }
    sigaction(SIGUSR1, &previous, nullptr);
}

TEST(RelaySocketClientDeathTest, aTimeoutThatIsNoTimeStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    const TestSupport::RawPeer listening;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listening.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listening.descriptor(), 4), 0);
    for (const double timeout :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN(), 9.3e18, -9.3e18, std::numeric_limits<double>::max()}) {
        EXPECT_DEATH(RelaySocketClient::connect(path).readFrame(timeout),
                     "the timeout of readFrame is not finite or too large")
            << timeout;
    }
}

} // namespace
