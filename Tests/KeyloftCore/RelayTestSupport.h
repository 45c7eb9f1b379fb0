#pragma once

#include "KeyloftCore/NativeMessageFrame.h"
#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "KeyloftCore/RelaySocketError.h"
#include "Tests/Support/ProcessCounts.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Waiting.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace TestSupport {

/// Timeout, in seconds, for a reply that is certain to arrive.
inline constexpr double longWait = 30;

/// A peer that can violate the protocol, because it uses system calls directly. The destructor closes its
/// socket.
class RawPeer {
public:
    RawPeer()
        : descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    /// Connects to `path`. Retries if the connection is refused, because macOS refuses connections while the
    /// listener's backlog is full.
    explicit RawPeer(const std::string& path)
        : RawPeer() {
        bool connected = false;
        const bool ended = eventually([&] {
            connected = connect(path);
            if (connected || errno != ECONNREFUSED) {
                return true;
            }
            *this = RawPeer();
            return false;
        });
        EXPECT_TRUE(ended && connected) << path << ": " << std::generic_category().message(errno);
    }
    RawPeer(RawPeer&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    RawPeer& operator=(RawPeer&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        std::swap(error_, other.error_);
        return *this;
    }
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;
    ~RawPeer() { close(); }

    bool connect(const std::string& path) const {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        return ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }

    int descriptor() const { return descriptor_; }

    bool send(std::string_view bytes) const {
        while (!bytes.empty()) {
            const auto count = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }

    void endSending() const { shutdown(descriptor_, SHUT_WR); }

    /// Receives until the peer closes the connection or sends nothing for 30 seconds. `error()` then returns
    /// 0 if the connection was closed normally, and otherwise the value of `errno`, such as ECONNRESET.
    std::string receiveAll() {
        const timeval limit = {.tv_sec = 30, .tv_usec = 0};
        setsockopt(descriptor_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        std::string all;
        std::array<char, 4096> buffer = {};
        for (;;) {
            const auto count = recv(descriptor_, buffer.data(), buffer.size(), 0);
            if (count <= 0) {
                error_ = count < 0 ? errno : 0;
                return all;
            }
            all.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }

    int error() const { return error_; }

    void close() {
        if (descriptor_ >= 0) {
            ::close(std::exchange(descriptor_, -1));
        }
    }

private:
    int descriptor_;
    int error_ = 0;
};

/// Closes standard input for the lifetime of the object. The next descriptor to be opened is then 0, as in a
/// program that was launched without standard input.
class WithoutStandardInput {
public:
    WithoutStandardInput()
        : saved_(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)) {
        ::close(STDIN_FILENO);
    }
    WithoutStandardInput(const WithoutStandardInput&) = delete;
    WithoutStandardInput& operator=(const WithoutStandardInput&) = delete;
    ~WithoutStandardInput() {
        if (saved_ >= 0) {
            dup2(saved_, STDIN_FILENO);
            ::close(saved_);
        }
    }

private:
    int saved_;
};

inline std::string frame(std::string_view payload) {
    return KeyloftCore::NativeMessageFrame::encode(payload);
}

/// Connects to `path`. Retries if macOS refuses the connection because the listener's backlog is full.
inline KeyloftCore::RelaySocketClient connectInTurn(const std::string& path) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        try {
            return KeyloftCore::RelaySocketClient::connect(path);
        } catch (const KeyloftCore::RelaySocketError& error) {
            if (error.code() != ECONNREFUSED || std::chrono::steady_clock::now() > deadline) {
                throw;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

/// Sends a request through a `RelaySocketClient` and returns the reply, or `std::nullopt` if no reply
/// arrives.
inline std::optional<std::string> ask(const std::string& path, std::string_view request,
                                      double timeout = longWait) {
    const auto client = connectInTurn(path);
    client.writeFrame(request);
    auto reply = client.readFrame(timeout);
    client.close();
    return reply;
}

inline mode_t modeOf(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

inline bool isSocket(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

/// Fixture with a listener in a temporary directory. Expects that no test leaks a file descriptor or a
/// thread.
class RelayTest : public testing::Test {
protected:
    using RelayListener = KeyloftCore::RelayListener;

    void SetUp() override {
        // Sanitizers start a background thread together with the first thread of the program. Start a thread
        // now, so that the background thread is included in the count.
        std::thread([] {}).join();
        descriptors_ = openDescriptors();
        threads_ = runningThreads();
        listener = std::make_shared<RelayListener>();
    }

    void TearDown() override {
        listener.reset();
        kept.clear();
        EXPECT_TRUE(eventually([&] { return openDescriptors() == descriptors_; }))
            << openDescriptors() << " descriptors, were " << descriptors_;
        // A joined thread may remain listed in /proc for a moment.
        EXPECT_TRUE(eventually([&] { return runningThreads() <= threads_; }))
            << runningThreads() << " threads, were " << threads_;
    }

    /// Starts listening. The reply to each request is "echo " followed by the request.
    void startEcho() {
        listener->listen(path, [this](const std::string& request, const RelayListener::Reply& reply) {
            requests.signal();
            reply("echo " + request);
        });
    }

    /// Starts listening. Stores each request and its reply function instead of replying.
    void startKeeping() {
        listener->listen(path, [this](const std::string& request, RelayListener::Reply reply) {
            {
                const std::scoped_lock lock(mutex);
                received.push_back(request);
                kept.push_back(std::move(reply));
            }
            requests.signal();
        });
    }

    RelayListener::Reply keptReply(std::size_t index) {
        const std::scoped_lock lock(mutex);
        return kept.at(index);
    }

    std::vector<std::string> receivedRequests() {
        const std::scoped_lock lock(mutex);
        return received;
    }

    const TemporaryDirectory directory;
    const std::string path = directory / "relay.sock";
    std::shared_ptr<RelayListener> listener;
    Event requests;
    std::mutex mutex;
    std::vector<std::string> received;
    std::vector<RelayListener::Reply> kept;

private:
    std::size_t descriptors_ = 0;
    std::size_t threads_ = 0;
};

} // namespace TestSupport
