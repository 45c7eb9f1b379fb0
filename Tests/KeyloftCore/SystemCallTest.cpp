// Tests conditions that cannot be produced on demand with real system calls: calls that are interrupted, that
// transfer only part of the data, or that fail.

#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "KeyloftCore/RelaySocketError.h"
#include "Tests/KeyloftCore/RelayTestSupport.h"
#include "Tests/KeyloftCore/SystemCalls.h"

#include <gtest/gtest.h>
#include <sys/un.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using KeyloftCore::RelayListener;
using KeyloftCore::RelaySocketClient;
using KeyloftCore::RelaySocketError;
using TestSupport::ask;
using TestSupport::eventually;
using TestSupport::frame;
using TestSupport::Intercepted;
using TestSupport::longWait;
using TestSupport::RawPeer;
using TestSupport::realSend;
using TestSupport::realStat;
using TestSupport::RelayTest;
using TestSupport::SystemCalls;

/// A pair of connected sockets.
struct SocketPair {
    SocketPair() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0); }
    SocketPair(const SocketPair&) = delete;
    SocketPair& operator=(const SocketPair&) = delete;
    ~SocketPair() {
        close(ends[0]);
        close(ends[1]);
    }
    std::array<int, 2> ends = {};
};

std::string receive(int descriptor) {
    std::string bytes(4096, '\0');
    const auto count = recv(descriptor, bytes.data(), bytes.size(), MSG_DONTWAIT);
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

TEST(WriteAllCalls, anInterruptedWriteIsRepeated) {
    const SocketPair pair;
    int calls = 0;
    SystemCalls system;
    system.send = [&](int, std::string_view) -> SystemCalls::Maybe {
        return ++calls < 4 ? SystemCalls::failure(EINTR) : std::nullopt;
    };
    const Intercepted intercepted(system);
    EXPECT_TRUE(RelayListener::writeAll(pair.ends[0], "hello"));
    EXPECT_EQ(calls, 4);
    EXPECT_EQ(receive(pair.ends[1]), "hello");
}

TEST(WriteAllCalls, aShortWriteIsContinuedWhereItEnded) {
    const SocketPair pair;
    int calls = 0;
    SystemCalls system;
    system.send = [&](int descriptor, std::string_view bytes) -> SystemCalls::Maybe {
        if (++calls % 2 == 0) {
            return SystemCalls::failure(EINTR);
        }
        return SystemCalls::Answer{.result = realSend(descriptor, bytes.data(), 1, MSG_NOSIGNAL)};
    };
    const Intercepted intercepted(system);
    EXPECT_TRUE(RelayListener::writeAll(pair.ends[0], "hello"));
    EXPECT_EQ(calls, 9);
    EXPECT_EQ(receive(pair.ends[1]), "hello");
}

TEST(WriteAllCalls, aWriteOfNothingIsAFailure) {
    const SocketPair pair;
    int calls = 0;
    SystemCalls system;
    system.send = [&](int, std::string_view) -> SystemCalls::Maybe {
        ++calls;
        return SystemCalls::Answer{.result = 0};
    };
    const Intercepted intercepted(system);
    EXPECT_FALSE(RelayListener::writeAll(pair.ends[0], "hello"));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(RelayListener::writeAll(pair.ends[0], ""));
    EXPECT_EQ(calls, 1) << "an empty write makes no system call";
}

TEST(WriteAllCalls, anyOtherErrorEndsItAndStaysInErrno) {
    const SocketPair pair;
    for (const int error : {EPIPE, EAGAIN, EIO, ENOBUFS}) {
        int calls = 0;
        SystemCalls system;
        system.send = [&](int, std::string_view) -> SystemCalls::Maybe {
            ++calls;
            return SystemCalls::failure(error);
        };
        const Intercepted intercepted(system);
        EXPECT_FALSE(RelayListener::writeAll(pair.ends[0], "hello"));
        EXPECT_EQ(errno, error);
        EXPECT_EQ(calls, 1);
    }
}

class SystemCallTest : public RelayTest {
protected:
    std::optional<RelaySocketError> listenError() {
        try {
            startEcho();
        } catch (const RelaySocketError& error) {
            return error;
        }
        return std::nullopt;
    }

    /// Sends a request and returns all data that is received, even if sending fails.
    std::string exchange(std::string_view request) const {
        RawPeer peer(path);
        peer.send(frame(request));
        return peer.receiveAll();
    }
};

TEST_F(SystemCallTest, aReplyInShortAndInterruptedWritesComesWhole) {
    startEcho();
    std::atomic<int> calls = 0;
    SystemCalls system;
    system.send = [&](int descriptor, std::string_view bytes) -> SystemCalls::Maybe {
        if (!bytes.empty() && ++calls % 3 == 0) {
            return SystemCalls::failure(EINTR);
        }
        return SystemCalls::Answer{.result = realSend(descriptor, bytes.data(),
                                                      std::min<std::size_t>(bytes.size(), 7), MSG_NOSIGNAL)};
    };
    const Intercepted intercepted(system);
    const std::string text(500, 't');
    EXPECT_EQ(ask(path, text), "echo " + text);
    EXPECT_GT(calls, 100);
}

TEST_F(SystemCallTest, aFailedReplyClosesTheConnectionAndNothingElse) {
    startEcho();
    std::atomic<bool> failing = true;
    SystemCalls system;
    system.send = [&](int, std::string_view bytes) -> SystemCalls::Maybe {
        return failing && bytes == frame("echo x") ? SystemCalls::failure(EIO) : std::nullopt;
    };
    const Intercepted intercepted(system);
    EXPECT_EQ(ask(path, "x"), std::nullopt);
    failing = false;
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(SystemCallTest, theClientRepeatsAnInterruptedRead) {
    startKeeping();
    const auto client = RelaySocketClient::connect(path);
    client.writeFrame("x");
    ASSERT_TRUE(requests.wait());
    int calls = 0;
    SystemCalls system;
    system.read = [&](int descriptor, std::size_t count) -> SystemCalls::Maybe {
        if (descriptor != client.fd()) {
            return std::nullopt;
        }
        EXPECT_EQ(count, 65'536U);
        return ++calls < 4 ? SystemCalls::failure(EINTR) : std::nullopt;
    };
    const Intercepted intercepted(system);
    keptReply(0)("patience");
    EXPECT_EQ(client.readFrame(longWait), "patience");
    EXPECT_EQ(calls, 4);
    client.close();
}

TEST_F(SystemCallTest, anyOtherFailureOfTheClientsReadIsNoReply) {
    startEcho();
    for (const int error : {EAGAIN, ECONNRESET, EIO}) {
        const auto client = RelaySocketClient::connect(path);
        SystemCalls system;
        system.read = [&](int descriptor, std::size_t) -> SystemCalls::Maybe {
            return descriptor == client.fd() ? SystemCalls::failure(error) : std::nullopt;
        };
        const Intercepted intercepted(system);
        EXPECT_EQ(client.readFrame(longWait), std::nullopt);
        client.close();
    }
}

TEST_F(SystemCallTest, anInterruptedReadOfTheListenerEndsTheConnection) {
    startEcho();
    std::atomic<int> calls = 0;
    SystemCalls system;
    system.read = [&](int, std::size_t count) -> SystemCalls::Maybe {
        return count == 65'536 && ++calls == 1 ? SystemCalls::failure(EINTR) : std::nullopt;
    };
    {
        RawPeer peer(path);
        // Connections are accepted in order. Once this later connection is served, `peer` has been accepted.
        EXPECT_EQ(ask(path, "x"), "echo x");
        const Intercepted intercepted(system);
        ASSERT_TRUE(peer.send(frame("y")));
        EXPECT_EQ(peer.receiveAll(), "");
        EXPECT_EQ(calls, 1) << "it is not repeated";
    }
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(SystemCallTest, aPeerWhoseUserCannotBeToldIsRefusedUnread) {
    startEcho();
    for (const int error : {ENOTSOCK, ENOPROTOOPT, EINVAL}) {
        std::atomic<int> reads = 0;
        SystemCalls system;
        system.getsockopt = [&](int level, int option, void*, socklen_t*) -> SystemCalls::Maybe {
            return level == SOL_SOCKET && option == SO_PEERCRED ? SystemCalls::failure(error) : std::nullopt;
        };
        system.read = [&](int, std::size_t count) -> SystemCalls::Maybe {
            reads += count == 65'536 ? 1 : 0;
            return std::nullopt;
        };
        system.recv = system.read;
        const Intercepted intercepted(system);
        RawPeer peer(path);
        peer.send(frame("x"));
        EXPECT_EQ(peer.receiveAll(), "");
        EXPECT_EQ(reads, 0);
    }
    EXPECT_EQ(requests.count(), 0U);
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(SystemCallTest, aPeerOfAnotherUserIsRefusedUnread) {
    startEcho();
    // Peers that run as root are refused as well.
    for (const uid_t user : {getuid() + 1, static_cast<uid_t>(-1), getuid() == 0 ? 1U : 0U}) {
        std::atomic<int> reads = 0;
        SystemCalls system;
        system.getsockopt = [&](int, int option, void* value, socklen_t*) -> SystemCalls::Maybe {
            if (option != SO_PEERCRED) {
                return std::nullopt;
            }
            *static_cast<ucred*>(value) = {.pid = 1, .uid = user, .gid = 0};
            return SystemCalls::Answer{.result = 0};
        };
        system.read = [&](int, std::size_t count) -> SystemCalls::Maybe {
            reads += count == 65'536 ? 1 : 0;
            return std::nullopt;
        };
        system.recv = system.read;
        const Intercepted intercepted(system);
        RawPeer peer(path);
        peer.send(frame("x"));
        EXPECT_EQ(peer.receiveAll(), "");
        EXPECT_EQ(reads, 0);
    }
    EXPECT_EQ(requests.count(), 0U);
}

TEST_F(SystemCallTest, comparesThePeersUserWithTheRealUserOfTheProcess) {
    // The peer runs as the effective user of this process, which differs from its real user.
    const uid_t real = geteuid() + 1;
    uid_t peer = geteuid();
    SystemCalls system;
    system.getuid = [&]() -> SystemCalls::Maybe { return SystemCalls::Answer{.result = real}; };
    system.getsockopt = [&](int, int option, void* value, socklen_t*) -> SystemCalls::Maybe {
        if (option != SO_PEERCRED) {
            return std::nullopt;
        }
        *static_cast<ucred*>(value) = {.pid = 1, .uid = peer, .gid = 0};
        return SystemCalls::Answer{.result = 0};
    };
    startEcho();
    const Intercepted intercepted(system);
    EXPECT_EQ(exchange("x"), "");
    peer = real;
    EXPECT_EQ(exchange("y"), frame("echo y"));
}

TEST_F(SystemCallTest, refusesPeersWhoseCredentialsAreIncomplete) {
    SystemCalls system;
    system.getsockopt = [&](int, int option, void* value, socklen_t* length) -> SystemCalls::Maybe {
        if (option != SO_PEERCRED) {
            return std::nullopt;
        }
        *static_cast<ucred*>(value) = {.pid = 1, .uid = getuid(), .gid = 0};
        *length = offsetof(ucred, gid);
        return SystemCalls::Answer{.result = 0};
    };
    startEcho();
    const Intercepted intercepted(system);
    EXPECT_EQ(exchange("x"), "");
    EXPECT_EQ(requests.count(), 0U);
}

TEST_F(SystemCallTest, withoutDescriptorsAcceptingIsTriedOnceAndThenAgainNowAndThen) {
    for (const int error : {EMFILE, ENFILE, ENOBUFS, ENOMEM}) {
        const auto begin = std::chrono::steady_clock::now();
        startEcho();
        std::atomic<int> calls = 0;
        SystemCalls system;
        system.accept = [&](int) -> SystemCalls::Maybe {
            ++calls;
            return SystemCalls::failure(error);
        };
        {
            const Intercepted intercepted(system);
            const RawPeer peer(path);
            EXPECT_TRUE(eventually([&] { return calls > 0; }));
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            // The listener retries once per second. Compare the number of calls with the elapsed time,
            // because the test may run slowly on a busy machine.
            const auto seconds =
                std::chrono::floor<std::chrono::seconds>(std::chrono::steady_clock::now() - begin);
            EXPECT_LE(calls, 1 + seconds.count());
        }
        listener->close();
    }
}

TEST_F(SystemCallTest, otherFailuresOfAcceptingPassByQuietly) {
    startEcho();
    std::atomic<int> calls = 0;
    SystemCalls system;
    system.accept = [&](int) -> SystemCalls::Maybe {
        return ++calls <= 20 ? SystemCalls::failure(ECONNABORTED) : std::nullopt;
    };
    const Intercepted intercepted(system);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ask(path, "x"), "echo x");
    EXPECT_EQ(calls, 21);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)) << "without pauses";
}

TEST_F(SystemCallTest, anAnnouncedConnectionThatIsGoneHoldsNobodyUp) {
    startEcho();
    const auto early = RelaySocketClient::connect(path);
    EXPECT_EQ(ask(path, "x"), "echo x") << "so the connection before it has been accepted as well";
    std::atomic<int> stolen = -1;
    SystemCalls system;
    system.accept = [&](int listening) -> SystemCalls::Maybe {
        if (stolen < 0) {
            stolen = accept(listening, nullptr, nullptr);
        }
        return std::nullopt;
    };
    {
        const Intercepted intercepted(system);
        const RawPeer gone(path);
        EXPECT_TRUE(eventually([&] { return stolen >= 0; }));
        early.writeFrame("y");
        EXPECT_EQ(early.readFrame(10), "echo y");
    }
    early.close();
    close(stolen);
    EXPECT_EQ(ask(path, "z"), "echo z");
}

TEST_F(SystemCallTest, aSocketThatCannotBeMadeIsReported) {
    SystemCalls system;
    system.socket = []() -> SystemCalls::Maybe { return SystemCalls::failure(ENFILE); };
    const Intercepted intercepted(system);
    EXPECT_EQ(listenError(), RelaySocketError::syscall("socket", ENFILE));
    try {
        RelaySocketClient::connect(path);
        ADD_FAILURE();
    } catch (const RelaySocketError& error) {
        EXPECT_EQ(error, RelaySocketError::syscall("socket", ENFILE));
    }
}

TEST_F(SystemCallTest, aFailureToListenTakesTheFileAway) {
    const auto before = TestSupport::openDescriptors();
    SystemCalls system;
    int backlog = 0;
    system.listen = [&](int asked) -> SystemCalls::Maybe {
        backlog = asked;
        EXPECT_TRUE(TestSupport::isSocket(path));
        return SystemCalls::failure(EADDRINUSE);
    };
    {
        const Intercepted intercepted(system);
        EXPECT_EQ(listenError(), RelaySocketError::syscall("listen", EADDRINUSE));
    }
    EXPECT_EQ(backlog, 4);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(TestSupport::openDescriptors(), before);
    startEcho();
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(SystemCallTest, aModeThatCannotBeSetIsNoFailure) {
    SystemCalls system;
    system.chmod = [&](std::string_view of) -> SystemCalls::Maybe {
        return of == path ? SystemCalls::failure(EPERM) : std::nullopt;
    };
    const Intercepted intercepted(system);
    startEcho();
    EXPECT_EQ(TestSupport::modeOf(path), 0700U) << "the umask already denies access to others";
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(SystemCallTest, aListenerThatDoesNotKnowItsFileLeavesIt) {
    SystemCalls system;
    system.stat = [&](std::string_view of, struct stat*) -> SystemCalls::Maybe {
        return of == path ? SystemCalls::failure(EACCES) : std::nullopt;
    };
    {
        const Intercepted intercepted(system);
        startEcho();
    }
    EXPECT_EQ(ask(path, "x"), "echo x");
    listener->close();
    EXPECT_TRUE(TestSupport::isSocket(path));
}

TEST_F(SystemCallTest, closeReturnsOnceTheSocketIsClosed) {
    startEcho();
    std::atomic<bool> isClosed = false;
    SystemCalls system;
    system.close = [&]() -> SystemCalls::Maybe {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        isClosed = true;
        return std::nullopt;
    };
    const Intercepted intercepted(system);
    listener->close();
    EXPECT_TRUE(isClosed);
}

TEST_F(SystemCallTest, aFileThatCannotBeLookedAtStays) {
    startEcho();
    SystemCalls system;
    system.stat = [&](std::string_view of, struct stat*) -> SystemCalls::Maybe {
        return of == path ? SystemCalls::failure(EACCES) : std::nullopt;
    };
    {
        const Intercepted intercepted(system);
        listener->close();
    }
    EXPECT_TRUE(TestSupport::isSocket(path));
    EXPECT_FALSE(RawPeer().connect(path)) << "the socket no longer accepts connections";
    listener->close();
    EXPECT_TRUE(TestSupport::isSocket(path)) << "the path was forgotten";
}

TEST_F(SystemCallTest, aFileWithTheSocketsNumberOnAnotherDeviceStays) {
    startEcho();
    SystemCalls system;
    system.stat = [&](std::string_view of, struct stat* status) -> SystemCalls::Maybe {
        if (of != path || realStat(of, status) != 0) {
            return std::nullopt;
        }
        ++status->st_dev;
        return SystemCalls::Answer{.result = 0};
    };
    const Intercepted intercepted(system);
    listener->close();
    EXPECT_TRUE(TestSupport::isSocket(path));
}

TEST_F(SystemCallTest, errorsAreThoseOfTheCallThatFailedAndNotOfTheCleanUp) {
    SystemCalls system;
    system.close = []() -> SystemCalls::Maybe { return SystemCalls::failure(EIO); };
    system.connect = [](socklen_t) -> SystemCalls::Maybe { return SystemCalls::failure(ENOBUFS); };
    system.listen = [](int) -> SystemCalls::Maybe { return SystemCalls::failure(ENOBUFS); };
    {
        const Intercepted intercepted(system);
        EXPECT_EQ(listenError(), RelaySocketError::syscall("listen", ENOBUFS));
        try {
            RelaySocketClient::connect(path);
            ADD_FAILURE();
        } catch (const RelaySocketError& error) {
            EXPECT_EQ(error, RelaySocketError::syscall("connect", ENOBUFS));
        }
    }
    system.bind = system.connect;
    const Intercepted intercepted(system);
    EXPECT_EQ(listenError(), RelaySocketError::syscall("bind", ENOBUFS));
}

TEST_F(SystemCallTest, addressesHaveTheirFullLength) {
    std::vector<socklen_t> lengths;
    SystemCalls system;
    const auto note = [&](socklen_t length) -> SystemCalls::Maybe {
        lengths.push_back(length);
        return std::nullopt;
    };
    system.bind = note;
    system.connect = note;
    const Intercepted intercepted(system);
    startEcho();
    RelaySocketClient::connect(path).close();
    EXPECT_EQ(lengths, (std::vector<socklen_t>{sizeof(sockaddr_un), sizeof(sockaddr_un)}));
}

TEST_F(SystemCallTest, checksAndLimitsAConnectionBeforeReadingFromIt) {
    std::vector<std::string> calls;
    std::mutex guard;
    const auto note = [&](const std::string& call) {
        const std::scoped_lock lock(guard);
        calls.push_back(call);
    };
    SystemCalls system;
    system.getsockopt = [&](int level, int option, void*, socklen_t*) -> SystemCalls::Maybe {
        note(level == SOL_SOCKET && option == SO_PEERCRED ? "credentials" : "another option");
        return std::nullopt;
    };
    system.setsockopt = [&](int level, int option, const void* value) -> SystemCalls::Maybe {
        const auto* time = static_cast<const timeval*>(value);
        note(level == SOL_SOCKET && option == SO_SNDTIMEO && time->tv_sec == 3 && time->tv_usec == 0
                 ? "send timeout of 3 s"
                 : "another option");
        return std::nullopt;
    };
    system.read = [&](int, std::size_t count) -> SystemCalls::Maybe {
        if (count == 65'536) {
            note("read");
        }
        return std::nullopt;
    };
    system.recv = [&](int, std::size_t) -> SystemCalls::Maybe {
        note("recv");
        return std::nullopt;
    };
    startKeeping();
    const RawPeer peer;
    {
        const Intercepted intercepted(system);
        ASSERT_TRUE(peer.connect(path));
        ASSERT_TRUE(peer.send(frame("x")));
        ASSERT_TRUE(requests.wait());
    }
    EXPECT_EQ(calls, (std::vector<std::string>{"credentials", "send timeout of 3 s", "read"}));
}

TEST_F(SystemCallTest, theClientsTimeoutIsCutToMicrosecondsButNotToNone) {
    startEcho();
    const auto timeoutFor = [&](double seconds) {
        std::vector<timeval> values;
        SystemCalls system;
        system.setsockopt = [&](int level, int option, const void* value) -> SystemCalls::Maybe {
            if (level == SOL_SOCKET && option == SO_RCVTIMEO) {
                values.push_back(*static_cast<const timeval*>(value));
            }
            return std::nullopt;
        };
        const auto client = RelaySocketClient::connect(path);
        client.writeFrame("x");
        const Intercepted intercepted(system);
        client.readFrame(seconds);
        client.close();
        EXPECT_EQ(values.size(), 1U);
        return values.empty() ? std::pair<long, long>()
                              : std::pair<long, long>(values[0].tv_sec, values[0].tv_usec);
    };
    EXPECT_EQ(timeoutFor(0.25), std::pair(0L, 250'000L));
    EXPECT_EQ(timeoutFor(0), std::pair(0L, 0L));
    EXPECT_EQ(timeoutFor(5), std::pair(5L, 0L));
    EXPECT_EQ(timeoutFor(1.9999999), std::pair(1L, 999'999L));
    EXPECT_EQ(timeoutFor(1.0000009), std::pair(1L, 0L));
    EXPECT_EQ(timeoutFor(0.0000009), std::pair(0L, 1L));
    EXPECT_EQ(timeoutFor(1e-300), std::pair(0L, 1L));
    EXPECT_EQ(timeoutFor(1e15), std::pair(1'000'000'000'000'000L, 0L));
}

} // namespace
