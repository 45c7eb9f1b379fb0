// Tests the relay between processes. The child processes are forked before any thread is started, and report
// results through their exit status.

#include "KeyloftCore/RelaySocketError.h"
#include "Tests/KeyloftCore/RelayTestSupport.h"
#include "Tests/Platform/Dispatch/Pipe.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <string>

namespace {

using KeyloftCore::RelayListener;
using KeyloftCore::RelaySocketClient;
using TestSupport::ask;
using TestSupport::Event;
using TestSupport::frame;
using TestSupport::longWait;
using TestSupport::Pipe;
using TestSupport::RawPeer;
using TestSupport::TemporaryDirectory;

/// A child process that runs `body` when `start` is called. Its exit status is the return value of `body`.
class Child {
public:
    explicit Child(const std::function<int()>& body)
        : process_(fork()) {
        if (process_ == 0) {
            char word = 0;
            start_.closeWriteEnd();
            const bool told = read(start_.readEnd(), &word, 1) == 1;
            _exit(told ? body() : 99);
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (process_ > 0) {
            start_.closeWriteEnd();
            waitpid(process_, nullptr, 0);
        }
    }

    void start() const { start_.put("x"); }

    int exitStatus() {
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    Pipe start_;
    pid_t process_;
};

TEST(RelayBetweenProcesses, aRequestAndItsReplyCross) {
    const TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    Child child([&] {
        for (int turn = 0; turn < 100; ++turn) {
            if (ask(path, "from the child") != "echo from the child") {
                return 1;
            }
        }
        return 0;
    });
    RelayListener listener;
    listener.listen(path, [](const std::string& request, const RelayListener::Reply& reply) {
        reply("echo " + request);
    });
    child.start();
    EXPECT_EQ(child.exitStatus(), 0);
}

TEST(RelayBetweenProcesses, aHostThatEndsLeavesTheClientWithoutAReply) {
    const TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    const Pipe ready;
    Child host([&] {
        RelayListener listener;
        listener.listen(path, [](const std::string&, const RelayListener::Reply&) { _exit(7); });
        ready.put("x");
        pause();
        return 1;
    });
    host.start();
    char byte = 0;
    ASSERT_EQ(read(ready.readEnd(), &byte, 1), 1);
    EXPECT_EQ(ask(path, "x"), std::nullopt);
    EXPECT_EQ(host.exitStatus(), 7);
    // The socket file that an exited host leaves behind does not prevent the next host from listening.
    EXPECT_THROW(RelaySocketClient::connect(path), KeyloftCore::RelaySocketError);
    RelayListener next;
    next.listen(path, [](const std::string& request, const RelayListener::Reply& reply) { reply(request); });
    EXPECT_EQ(ask(path, "x"), "x");
}

TEST(RelayBetweenProcesses, aProcessOfAnotherUserIsDisconnectedUnread) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can run a process as another user";
    }
    const auto* nobody = getpwnam("nobody");
    if (nobody == nullptr) {
        GTEST_SKIP() << "there is no user nobody";
    }
    const TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    const Pipe sent;
    enum Outcome { served = 1, refusedByMode = 2, disconnectedRead = 3, disconnectedUnread = 4, other = 5 };
    const auto body = [&, user = nobody->pw_uid, group = nobody->pw_gid] {
        if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0 || geteuid() != user) {
            return static_cast<int>(other);
        }
        RawPeer peer;
        if (!peer.connect(path)) {
            return static_cast<int>(errno == EACCES ? refusedByMode : other);
        }
        peer.send(frame("let me in"));
        sent.put("x");
        const auto got = peer.receiveAll();
        if (!got.empty()) {
            return static_cast<int>(served);
        }
        // The kernel resets a connection only if it is closed with unread data, so ECONNRESET shows that the
        // listener has not read the request.
        return static_cast<int>(peer.error() == ECONNRESET ? disconnectedUnread : disconnectedRead);
    };
    Child closedOut(body);
    Child letIn(body);

    std::atomic<int> requests = 0;
    Event held;
    Event mayGoOn;
    RelayListener listener;
    listener.listen(path, [&](const std::string& request, const RelayListener::Reply& reply) {
        ++requests;
        if (request == "hold") {
            held.signal();
            EXPECT_TRUE(mayGoOn.wait());
        }
        reply(request);
    });
    ASSERT_EQ(chmod(directory.path().c_str(), 0755), 0);

    closedOut.start();
    EXPECT_EQ(closedOut.exitStatus(), refusedByMode) << "the mode of the socket denies access";

    // Make the socket accessible to all users, and block the queue so that the peer's bytes arrive before the
    // listener accepts the connection.
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    const auto holder = RelaySocketClient::connect(path);
    holder.writeFrame("hold");
    ASSERT_TRUE(held.wait());
    letIn.start();
    char byte = 0;
    // NOLINTNEXTLINE(clang-analyzer-unix.BlockInCriticalSection): no lock is held here
    ASSERT_EQ(read(sent.readEnd(), &byte, 1), 1);
    mayGoOn.signal();
    EXPECT_EQ(letIn.exitStatus(), disconnectedUnread);
    EXPECT_EQ(holder.readFrame(longWait), "hold");
    holder.close();
    EXPECT_EQ(requests, 1);
    EXPECT_EQ(ask(path, "honest"), "honest");
}

} // namespace
