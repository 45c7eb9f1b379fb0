#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Waiting.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace {

using KeyloftCore::RelayListener;
using KeyloftCore::RelaySocketClient;
using TestSupport::Event;
using TestSupport::TemporaryDirectory;

/// Timeout, in seconds: long enough for any reply, but short enough that a test fails quickly if no reply
/// arrives.
constexpr double answerTimeout = 10;

/// File descriptors of the connections that this process has accepted on the socket at `path`.
std::vector<int> acceptedConnections(const std::string& path) {
    std::vector<int> connections;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        sockaddr_un address = {};
        socklen_t length = sizeof address;
        int listens = 0;
        socklen_t size = sizeof listens;
        if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) == 0 &&
            address.sun_family == AF_UNIX && path == address.sun_path &&
            getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) == 0 && listens == 0) {
            connections.push_back(descriptor);
        }
    }
    return connections;
}

std::size_t takeWaitingBytes(int descriptor) {
    std::array<char, 64> buffer = {};
    const auto count = recv(descriptor, buffer.data(), buffer.size(), MSG_DONTWAIT);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

/// Two requests become readable while the queue is busy, so one poll reports both. The handler of the first
/// request reads the bytes of the second request, which makes the event for the second request stale.
TEST(RelayStaleEvent, leavesTheConnectionOpenAndTheQueueFree) {
    const TemporaryDirectory directory;
    const auto path = directory / "relay.sock";
    Event held;
    Event mayGoOn;
    Event taken;
    std::string served;
    std::size_t takenBytes = 0;
    RelayListener listener;
    listener.listen(path, [&](const std::string& request, const RelayListener::Reply& reply) {
        if (request == "hold") {
            held.signal();
            EXPECT_TRUE(mayGoOn.wait());
        } else if (served.empty()) {
            served = request;
            for (const int connection : acceptedConnections(path)) {
                takenBytes += takeWaitingBytes(connection);
            }
            taken.signal();
        }
        reply("echo " + request);
    });
    const auto one = RelaySocketClient::connect(path);
    const auto two = RelaySocketClient::connect(path);
    const auto holder = RelaySocketClient::connect(path);
    holder.writeFrame("hold");
    EXPECT_TRUE(held.wait());
    one.writeFrame("one");
    two.writeFrame("two");
    mayGoOn.signal();
    EXPECT_EQ(holder.readFrame(answerTimeout), "echo hold");

    EXPECT_TRUE(taken.wait());
    EXPECT_EQ(takenBytes, 4 + std::string("one").size());
    const auto honest = RelaySocketClient::connect(path);
    honest.writeFrame("honest");
    EXPECT_EQ(honest.readFrame(answerTimeout), "echo honest");
    const auto& robbed = served == "one" ? two : one;
    robbed.writeFrame("again");
    EXPECT_EQ(robbed.readFrame(answerTimeout), "echo again");
    for (const auto& client : {one, two, holder, honest}) {
        client.close();
    }
}

} // namespace
