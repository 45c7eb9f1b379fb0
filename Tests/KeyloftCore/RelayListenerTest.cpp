#include "KeyloftCore/RelayListener.h"

#include "KeyloftCore/RelaySocketError.h"
#include "Platform/Foundation/FileManager.h"
#include "Tests/KeyloftCore/RelayTestSupport.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using KeyloftCore::RelayListener;
using KeyloftCore::RelaySocketClient;
using KeyloftCore::RelaySocketError;
using TestSupport::ask;
using TestSupport::Event;
using TestSupport::frame;
using TestSupport::isSocket;
using TestSupport::longWait;
using TestSupport::modeOf;
using TestSupport::RawPeer;
using TestSupport::RelayTest;
using TestSupport::WithoutStandardInput;
using TestSupport::writeContents;

/// Sets the file mode creation mask of the process for the lifetime of the object.
class Mask {
public:
    explicit Mask(mode_t mask)
        : previous_(umask(mask)) {}
    Mask(const Mask&) = delete;
    Mask& operator=(const Mask&) = delete;
    ~Mask() { umask(previous_); }

    static mode_t current() {
        const auto mask = umask(0);
        umask(mask);
        return mask;
    }

private:
    mode_t previous_;
};

/// Changes the current directory of the process for the lifetime of the object.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const std::filesystem::path& path)
        : previous_(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;
    ~CurrentDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(previous_, ignored);
    }

private:
    std::filesystem::path previous_;
};

std::optional<RelaySocketError> listenError(RelayListener& listener, const std::string& path) {
    try {
        listener.listen(path, [](const std::string&, const RelayListener::Reply&) {});
    } catch (const RelaySocketError& error) {
        return error;
    }
    return std::nullopt;
}

class RelayListenerTest : public RelayTest {};

TEST_F(RelayListenerTest, answersOneRequestWithOneReplyAndCloses) {
    startEcho();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("hello")));
    EXPECT_EQ(peer.receiveAll(), frame("echo hello"));
    EXPECT_EQ(peer.error(), 0);
    EXPECT_EQ(requests.count(), 1U);
}

TEST_F(RelayListenerTest, answersClientsOneAfterTheOther) {
    startEcho();
    for (int turn = 0; turn < 200; ++turn) {
        const auto text = std::to_string(turn);
        EXPECT_EQ(ask(path, text), "echo " + text);
    }
}

TEST_F(RelayListenerTest, answersManyClientsAtOnce) {
    startEcho();
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    threads.reserve(8);
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&, thread] {
            for (int turn = 0; turn < 50; ++turn) {
                const auto text = std::to_string(thread) + "/" + std::to_string(turn);
                right += ask(path, text) == "echo " + text ? 1 : 0;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, 400);
}

TEST_F(RelayListenerTest, carriesEmptyAndLargestPayloads) {
    listener->listen(path,
                     [](const std::string& request, const RelayListener::Reply& reply) { reply(request); });
    EXPECT_EQ(ask(path, ""), "");
    std::string largest(1 << 20, '\0');
    for (std::size_t index = 0; index < largest.size(); ++index) {
        largest[index] = static_cast<char>(index * 31);
    }
    EXPECT_EQ(ask(path, largest), largest);
}

TEST_F(RelayListenerTest, callsOnFrameOnItsOneThread) {
    std::array<char, 16> name = {};
    std::vector<pthread_t> threads;
    listener->listen(path, [&](const std::string&, const RelayListener::Reply& reply) {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        threads.push_back(pthread_self());
        reply("");
    });
    const auto running = TestSupport::runningThreads();
    ask(path, "a");
    ask(path, "b");
    EXPECT_EQ(TestSupport::runningThreads(), running);
    ASSERT_EQ(threads.size(), 2U);
    EXPECT_TRUE(pthread_equal(threads[0], threads[1]));
    EXPECT_FALSE(pthread_equal(threads[0], pthread_self()));
    EXPECT_STREQ(name.data(), "relay-listener");
}

TEST_F(RelayListenerTest, theReplyMayComeLaterFromAnotherThread) {
    startKeeping();
    const auto client = RelaySocketClient::connect(path);
    client.writeFrame("later");
    ASSERT_TRUE(requests.wait());
    std::thread([this] { keptReply(0)("at last"); }).join();
    EXPECT_EQ(client.readFrame(longWait), "at last");
    client.close();
}

TEST_F(RelayListenerTest, repliesMayComeInAnyOrder) {
    startKeeping();
    const auto first = RelaySocketClient::connect(path);
    first.writeFrame("1");
    ASSERT_TRUE(requests.wait());
    const auto second = RelaySocketClient::connect(path);
    second.writeFrame("2");
    ASSERT_TRUE(requests.wait(2));
    keptReply(1)("to the second");
    EXPECT_EQ(second.readFrame(longWait), "to the second");
    keptReply(0)("to the first");
    EXPECT_EQ(first.readFrame(longWait), "to the first");
    first.close();
    second.close();
}

TEST_F(RelayListenerTest, onlyTheFirstReplyIsWritten) {
    listener->listen(path, [](const std::string&, const RelayListener::Reply& reply) {
        reply("first");
        reply("second");
        const auto copy = reply; // NOLINT: a copy is what is tested
        copy("third");
    });
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    EXPECT_EQ(peer.receiveAll(), frame("first"));
}

TEST_F(RelayListenerTest, ofRepliesFromSeveralThreadsOneIsWritten) {
    startKeeping();
    for (std::size_t turn = 0; turn < 20; ++turn) {
        RawPeer peer(path);
        ASSERT_TRUE(peer.send(frame("x")));
        ASSERT_TRUE(requests.wait(turn + 1));
        std::vector<std::thread> threads;
        for (const auto* text : {"a", "b", "c"}) {
            threads.emplace_back([this, text, turn] { keptReply(turn)(text); });
        }
        const auto got = peer.receiveAll();
        for (auto& thread : threads) {
            thread.join();
        }
        EXPECT_TRUE(got == frame("a") || got == frame("b") || got == frame("c")) << got;
    }
}

TEST_F(RelayListenerTest, aReplyAfterCloseWritesNothing) {
    startKeeping();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(requests.wait());
    listener->close();
    keptReply(0)("too late");
    EXPECT_EQ(peer.receiveAll(), "");
}

TEST_F(RelayListenerTest, aReplyAfterTheListenersEndDoesNothing) {
    startKeeping();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(requests.wait());
    listener.reset();
    keptReply(0)("too late");
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_FALSE(std::filesystem::exists(path)) << "the end closes";
}

TEST_F(RelayListenerTest, aKeptReplyKeepsNothingOfTheListener) {
    const auto token = std::make_shared<int>(0);
    RelayListener::Reply keptReplyFunction;
    Event asked;
    const auto threads = TestSupport::runningThreads();
    const auto descriptors = TestSupport::openDescriptors();
    {
        RelayListener shortLived;
        shortLived.listen(path, [&, token](const std::string&, RelayListener::Reply reply) {
            keptReplyFunction = std::move(reply);
            asked.signal();
        });
        const RawPeer peer(path);
        ASSERT_TRUE(peer.send(frame("x")));
        ASSERT_TRUE(asked.wait());
    }
    ASSERT_TRUE(keptReplyFunction);
    EXPECT_TRUE(TestSupport::eventually([&] {
        return token.use_count() == 1 && TestSupport::runningThreads() == threads &&
               TestSupport::openDescriptors() == descriptors;
    })) << token.use_count()
        << " owners of the handler, " << TestSupport::runningThreads() - threads << " threads";
}

TEST_F(RelayListenerTest, aReplyToAPeerThatHasGoneDoesNothing) {
    startKeeping();
    {
        const RawPeer peer(path);
        ASSERT_TRUE(peer.send(frame("x")));
        ASSERT_TRUE(requests.wait());
    }
    keptReply(0)("to nobody");
    keptReply(0)(std::string(1 << 20, 'x'));
    // Replying to a closed connection must not prevent the queue from serving other connections.
    const auto client = RelaySocketClient::connect(path);
    client.writeFrame("y");
    ASSERT_TRUE(requests.wait(2));
    keptReply(1)("ok");
    EXPECT_EQ(client.readFrame(longWait), "ok");
    client.close();
}

TEST_F(RelayListenerTest, keptRepliesDoNotKeepConnectionsOpen) {
    startKeeping();
    const auto before = TestSupport::openDescriptors();
    for (std::size_t turn = 1; turn <= 10; ++turn) {
        const RawPeer peer(path);
        ASSERT_TRUE(peer.send(frame("x")));
        ASSERT_TRUE(requests.wait(turn));
    }
    EXPECT_TRUE(TestSupport::eventually([&] { return TestSupport::openDescriptors() == before; }));
}

TEST_F(RelayListenerTest, theLastReferenceMayGoOnTheQueue) {
    Event done;
    const auto token = std::make_shared<int>(0);
    auto* handle = listener.get();
    handle->listen(path, [this, &done, token](const std::string&, const RelayListener::Reply& reply) {
        listener.reset();
        reply("never sent");
        EXPECT_EQ(token.use_count(), 2) << "the handler must outlive its own call";
        done.signal();
    });
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(done.wait());
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_TRUE(TestSupport::eventually([&] { return token.use_count() == 1; }));
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(RelayListenerTest, destroyedOnTheQueueLeavesItsSocketToTheCancelHandler) {
    // The listening socket must stay open until the cancel handler runs, because Dispatch may monitor it
    // until then.
    Event done;
    const int listening = dup(0); // the number of the next descriptor to be opened
    close(listening);
    listener->listen(path, [&](const std::string&, const RelayListener::Reply&) {
        int listens = 0;
        socklen_t size = sizeof listens;
        EXPECT_EQ(getsockopt(listening, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size), 0);
        listener.reset();
        EXPECT_EQ(getsockopt(listening, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size), 0);
        EXPECT_EQ(listens, 1);
        done.signal();
    });
    const RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(done.wait());
}

TEST_F(RelayListenerTest, theHandlerMayHoldTheListener) {
    // The handler and the listener form a reference cycle, which `close` breaks. The handler, and with it the
    // last reference to the listener, is then released on the queue.
    auto* handle = listener.get();
    handle->listen(path, [held = listener](const std::string& request, const RelayListener::Reply& reply) {
        reply(request);
    });
    EXPECT_EQ(ask(path, "x"), "x");
    const std::weak_ptr<RelayListener> weak = listener;
    listener->close();
    listener.reset();
    EXPECT_TRUE(TestSupport::eventually([&] { return weak.expired(); }));
}

TEST_F(RelayListenerTest, twoFramesInOneWriteAreOneRequest) {
    startKeeping();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("one") + frame("two")));
    ASSERT_TRUE(requests.wait());
    keptReply(0)("answer");
    EXPECT_EQ(peer.receiveAll(), frame("answer"));
    EXPECT_EQ(receivedRequests(), std::vector<std::string>{"one"});
}

TEST_F(RelayListenerTest, aSecondFrameInALaterWriteBeforeTheReplyIsAnotherRequest) {
    startKeeping();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("one")));
    ASSERT_TRUE(requests.wait(1));
    ASSERT_TRUE(peer.send(frame("two")));
    ASSERT_TRUE(requests.wait(2));
    EXPECT_EQ(receivedRequests(), (std::vector<std::string>{"one", "two"}));
    keptReply(1)("to the second");
    keptReply(0)("to the first");
    EXPECT_EQ(peer.receiveAll(), frame("to the second"));
}

TEST_F(RelayListenerTest, bytesAfterARequestGoOnFeedingItsDecoder) {
    startKeeping();
    RawPeer peer(path);
    const auto second = frame("two");
    ASSERT_TRUE(peer.send(frame("one") + second.substr(0, 5)));
    ASSERT_TRUE(requests.wait(1));
    ASSERT_TRUE(peer.send(second.substr(5)));
    ASSERT_TRUE(requests.wait(2));
    EXPECT_EQ(receivedRequests()[1], "two");
    keptReply(0)("");
    peer.receiveAll();
}

TEST_F(RelayListenerTest, aPeerThatEndsSendingAfterItsRequestGetsNoReply) {
    startKeeping();
    RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(requests.wait());
    peer.endSending();
    EXPECT_EQ(peer.receiveAll(), "");
    keptReply(0)("too late");
}

TEST_F(RelayListenerTest, aPeerThatSendsNothingCausesNoRequest) {
    startEcho();
    for (int turn = 0; turn < 10; ++turn) {
        const RawPeer peer(path);
    }
    EXPECT_EQ(ask(path, "x"), "echo x");
    EXPECT_EQ(requests.count(), 1U);
}

TEST_F(RelayListenerTest, theSocketIsTheOwnersAlone) {
    const Mask mask(0);
    startEcho();
    EXPECT_TRUE(isSocket(path));
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(Mask::current(), 0U) << "the umask is restored";
}

TEST_F(RelayListenerTest, theSocketsModeIsTheSameUnderAnyMask) {
    const Mask mask(0777);
    startEcho();
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(Mask::current(), 0777U);
}

TEST_F(RelayListenerTest, directoriesMadeHereAreTheOwnersAloneUnderAnyMaskAndOthersKeepTheirMode) {
    const auto existing = directory / "existing";
    mkdir(existing.c_str(), 0755);
    chmod(existing.c_str(), 0755);
    for (const mode_t restricted : {0U, 022U, 0277U, 0777U}) {
        const Mask mask(restricted);
        RelayListener deep;
        const auto made = existing + "/made" + std::to_string(restricted);
        deep.listen(made + "/here/relay.sock",
                    [](const std::string& request, const RelayListener::Reply& reply) { reply(request); });
        EXPECT_EQ(modeOf(existing), 0755U);
        EXPECT_EQ(modeOf(made), 0700U) << restricted;
        EXPECT_EQ(modeOf(made + "/here"), 0700U) << restricted;
        EXPECT_EQ(ask(made + "/here/relay.sock", "x"), "x");
    }
}

TEST_F(RelayListenerTest, replacesWhateverFileIsInItsPlace) {
    writeContents(path, "left over");
    startEcho();
    EXPECT_TRUE(isSocket(path));
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(RelayListenerTest, replacesASocketLeftByAnEarlierRun) {
    {
        const RawPeer unused;
        ASSERT_GE(unused.descriptor(), 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        ASSERT_EQ(bind(unused.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    ASSERT_TRUE(isSocket(path));
    startEcho();
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(RelayListenerTest, aDirectoryThatCannotBeMadeIsTheFileManagersErrorAndNothingElseHappens) {
    const auto file = directory / "file";
    writeContents(file, "mine");
    const auto ignore = [](const std::string&, const RelayListener::Reply&) {};
    EXPECT_THROW(listener->listen(file + "/relay.sock", ignore), Platform::FileError);
    EXPECT_EQ(TestSupport::contentsOf(file), "mine");
    EXPECT_THROW(listener->listen("", ignore), Platform::FileError);

    // A path without a directory names a file in the current directory. The listener must not remove that
    // file.
    const CurrentDirectory here(directory.path());
    EXPECT_THROW(listener->listen("file", ignore), Platform::FileError);
    EXPECT_EQ(TestSupport::contentsOf(file), "mine");
}

TEST_F(RelayListenerTest, createsTheDirectoryOfAPathThatEndsInASlash) {
    const auto ignore = [](const std::string&, const RelayListener::Reply&) {};
    EXPECT_THROW(listener->listen(directory / "new/relay.sock/", ignore), RelaySocketError);
    EXPECT_EQ(TestSupport::namesIn(directory.path()), std::set<std::string>{"new"});
    EXPECT_TRUE(TestSupport::namesIn(directory / "new").empty());
}

TEST_F(RelayListenerTest, aPathWithANULIsRefusedBeforeAnythingIsTouched) {
    const auto withNUL = [](std::string text) { return text.append("\0more", 5); };
    writeContents(path, "mine");
    for (const auto& refused : {withNUL(path), withNUL(directory / "new") + "/relay.sock",
                                withNUL("/" + std::string(200, 'x')), withNUL("")}) {
        EXPECT_EQ(listenError(*listener, refused), RelaySocketError::pathContainsNUL());
        try {
            RelaySocketClient::connect(refused).close();
            ADD_FAILURE() << "connected to another path";
        } catch (const RelaySocketError& error) {
            EXPECT_EQ(error, RelaySocketError::pathContainsNUL());
        }
    }
    EXPECT_EQ(TestSupport::contentsOf(path), "mine");
    EXPECT_EQ(TestSupport::namesIn(directory.path()), std::set<std::string>{"relay.sock"});
}

TEST_F(RelayListenerTest, aDirectoryInItsPlaceIsABindError) {
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    const Mask mask(022);
    EXPECT_EQ(listenError(*listener, path), RelaySocketError::syscall("bind", EADDRINUSE));
    EXPECT_EQ(Mask::current(), 022U) << "the umask is restored after a failure too";
    // After a failed call to `listen`, the listener is unchanged and `listen` can be called again.
    ASSERT_EQ(rmdir(path.c_str()), 0);
    startEcho();
    EXPECT_EQ(ask(path, "x"), "echo x");
}

TEST_F(RelayListenerTest, pathsUpTo103BytesAreTaken) {
    const auto padded = [this](std::size_t length) {
        const std::string base = directory / "";
        return base + std::string(length - base.size(), 'p');
    };
    const auto longest = padded(103);
    listener->listen(longest,
                     [](const std::string& request, const RelayListener::Reply& reply) { reply(request); });
    EXPECT_EQ(ask(longest, "x"), "x");
    listener->close();

    const auto tooLong = padded(104);
    writeContents(tooLong, "an innocent file");
    EXPECT_EQ(listenError(*listener, tooLong), RelaySocketError::pathTooLong());
    EXPECT_FALSE(std::filesystem::exists(tooLong)) << "removed before the length is checked";
    EXPECT_THROW(RelaySocketClient::connect(tooLong), RelaySocketError);
}

TEST_F(RelayListenerTest, thePathsLengthCountsBytes) {
    const std::string base = directory / "";
    std::string characters;
    while (base.size() + characters.size() < 104) {
        characters += "é";
    }
    ASSERT_LT(characters.size() / 2 + base.size(), 104U);
    EXPECT_EQ(listenError(*listener, base + characters), RelaySocketError::pathTooLong());
}

TEST_F(RelayListenerTest, withoutADescriptorLeftTheSocketFails) {
    rlimit previous = {};
    getrlimit(RLIMIT_NOFILE, &previous);
    const rlimit none = {.rlim_cur = 3, .rlim_max = previous.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const auto error = listenError(*listener, path);
    setrlimit(RLIMIT_NOFILE, &previous);
    EXPECT_EQ(error, RelaySocketError::syscall("socket", EMFILE));
}

TEST_F(RelayListenerTest, worksWithoutStandardInput) {
    {
        const WithoutStandardInput listeningIsZero;
        startEcho();
        EXPECT_EQ(ask(path, "x"), "echo x");
        listener->close();
    }
    startEcho();
    RawPeer peer;
    const WithoutStandardInput connectionIsZero;
    ASSERT_TRUE(peer.connect(path));
    ASSERT_TRUE(peer.send(frame("y")));
    EXPECT_EQ(peer.receiveAll(), frame("echo y"));
}

TEST_F(RelayListenerTest, descriptorsAreClosedOnExec) {
    startKeeping();
    const RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(requests.wait());
    const auto client = RelaySocketClient::connect(path);
    for (int descriptor = 3; descriptor < 64; ++descriptor) {
        const int flags = fcntl(descriptor, F_GETFD);
        if (flags >= 0) {
            sockaddr_storage address = {};
            socklen_t length = sizeof address;
            if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) == 0) {
                EXPECT_TRUE((flags & FD_CLOEXEC) != 0) << descriptor;
            }
        }
    }
    client.close();
}

TEST_F(RelayListenerTest, closeRemovesTheSocketAndEndsConnections) {
    startEcho();
    RawPeer idle(path);
    RawPeer half(path);
    ASSERT_TRUE(half.send(frame("unfinished").substr(0, 6)));
    EXPECT_EQ(ask(path, "x"), "echo x");
    listener->close();
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(idle.receiveAll(), "");
    EXPECT_EQ(half.receiveAll(), "");
    EXPECT_FALSE(RawPeer().connect(path));
}

TEST_F(RelayListenerTest, itsEndWaitsForARunningHandler) {
    std::atomic<bool> hasEnded = false;
    listener->listen(path, [&](const std::string&, const RelayListener::Reply&) {
        requests.signal();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        hasEnded = true;
    });
    const RawPeer peer(path);
    ASSERT_TRUE(peer.send(frame("x")));
    ASSERT_TRUE(requests.wait());
    listener.reset();
    EXPECT_TRUE(hasEnded);
}

TEST_F(RelayListenerTest, closeIsHarmlessTwiceAndBeforeListening) {
    listener->close();
    listener->close();
    startEcho();
    EXPECT_EQ(ask(path, "x"), "echo x");
    listener->close();
    listener->close();
}

TEST_F(RelayListenerTest, mayListenAgainAfterClosing) {
    startEcho();
    EXPECT_EQ(ask(path, "x"), "echo x");
    listener->close();
    startEcho();
    EXPECT_EQ(ask(path, "y"), "echo y");
}

TEST_F(RelayListenerTest, aSocketReplacedByAnotherListenerStays) {
    startEcho();
    RelayListener other;
    other.listen(path, [](const std::string&, const RelayListener::Reply& reply) { reply("the other"); });
    EXPECT_EQ(ask(path, "x"), "the other");
    listener->close();
    EXPECT_TRUE(isSocket(path));
    EXPECT_EQ(ask(path, "x"), "the other");
    other.close();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(RelayListenerTest, aFileOrDirectoryThatTookTheSocketsPlaceStays) {
    startEcho();
    ASSERT_EQ(unlink(path.c_str()), 0);
    writeContents(path, "mine");
    listener->close();
    EXPECT_EQ(TestSupport::contentsOf(path), "mine");

    startEcho();
    ASSERT_EQ(unlink(path.c_str()), 0);
    ASSERT_EQ(mkdir(path.c_str(), 0700), 0);
    listener->close();
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

TEST_F(RelayListenerTest, connectionsGoOnWhenTheSocketFileIsDeleted) {
    startKeeping();
    const auto client = RelaySocketClient::connect(path);
    client.writeFrame("x");
    ASSERT_TRUE(requests.wait());
    ASSERT_EQ(unlink(path.c_str()), 0);
    keptReply(0)("still here");
    EXPECT_EQ(client.readFrame(longWait), "still here");
    client.close();
    listener->close();
}

TEST_F(RelayListenerTest, closingDuringTrafficEndsEveryClient) {
    for (int round = 0; round < 10; ++round) {
        startEcho();
        std::atomic<int> answered = 0;
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (;;) {
                    try {
                        const auto client = RelaySocketClient::connect(path);
                        std::optional<std::string> reply;
                        try {
                            client.writeFrame("x");
                            reply = client.readFrame(longWait);
                        } catch (const RelaySocketError&) {
                            reply.reset(); // the listener has closed the connection
                        }
                        client.close();
                        if (!reply) {
                            return;
                        }
                        EXPECT_EQ(reply, "echo x");
                        ++answered;
                    } catch (const RelaySocketError&) {
                        return;
                    }
                }
            });
        }
        ASSERT_TRUE(requests.wait(static_cast<std::size_t>(round + 1) * 20));
        listener->close();
        for (auto& thread : threads) {
            thread.join();
        }
        EXPECT_FALSE(std::filesystem::exists(path));
    }
}

TEST_F(RelayListenerTest, repliesDuringCloseAreWholeOrAbsent) {
    for (int round = 0; round < 20; ++round) {
        const auto before = requests.count();
        startKeeping();
        RawPeer peer(path);
        ASSERT_TRUE(peer.send(frame("x")));
        ASSERT_TRUE(requests.wait(before + 1));
        std::thread replying([this] { kept.back()("answer"); });
        listener->close();
        replying.join();
        const auto got = peer.receiveAll();
        EXPECT_TRUE(got.empty() || got == frame("answer")) << got;
    }
}

TEST_F(RelayListenerTest, thousandsOfExchangesLeaveNothingBehind) {
    startEcho();
    const auto before = TestSupport::openDescriptors();
    for (int turn = 0; turn < 10'000; ++turn) {
        ASSERT_EQ(ask(path, "x"), "echo x");
    }
    EXPECT_TRUE(TestSupport::eventually([&] { return TestSupport::openDescriptors() == before; }));
}

TEST(RelayListenerDeathTest, closingOnTheQueueStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const TestSupport::TemporaryDirectory directory;
            const auto path = directory / "relay.sock";
            RelayListener listener;
            listener.listen(path, [&](const std::string&, const RelayListener::Reply&) { listener.close(); });
            ask(path, "x");
        },
        "sync was called on its own queue.*velde.orvane.keyloft.relay-listener");
}

TEST(RelayListenerDeathTest, aListenerWithoutAHandlerStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const TestSupport::TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    writeContents(path, "mine");
    EXPECT_DEATH(RelayListener().listen(path, nullptr),
                 "RelayListener::listen was called without a frame handler");
    EXPECT_EQ(TestSupport::contentsOf(path), "mine");
}

TEST(RelaySocketError, showsItself) {
    EXPECT_STREQ(RelaySocketError::syscall("bind", 98).what(), "syscall(\"bind\", 98)");
    EXPECT_STREQ(RelaySocketError::pathTooLong().what(), "pathTooLong");
    EXPECT_STREQ(RelaySocketError::pathContainsNUL().what(), "pathContainsNUL");
    EXPECT_EQ(RelaySocketError::syscall("bind", 98), RelaySocketError::syscall("bind", 98));
    EXPECT_NE(RelaySocketError::syscall("bind", 98), RelaySocketError::syscall("listen", 98));
    EXPECT_NE(RelaySocketError::syscall("bind", 98), RelaySocketError::syscall("bind", 99));
    EXPECT_NE(RelaySocketError::syscall("", 0), RelaySocketError::pathTooLong());
    EXPECT_NE(RelaySocketError::pathContainsNUL(), RelaySocketError::pathTooLong());
    EXPECT_EQ(RelaySocketError::syscall("bind", 98).kind(), RelaySocketError::Case::syscall);
    EXPECT_EQ(RelaySocketError::syscall("bind", 98).call(), "bind");
    EXPECT_EQ(RelaySocketError::syscall("bind", 98).code(), 98);
}

} // namespace
