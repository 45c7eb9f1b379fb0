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

/// The seconds that a client waits for a reply that is certain to come.
inline constexpr double longWait = 30;

/// A peer that is not bound to the protocol: plain system calls on a socket, which the destructor closes.
class RawPeer {
public:
    RawPeer()
        : descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    /// Connects. Retries while the connection is refused: macOS refuses it if too many others wait to be
    /// accepted.
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

    /// Receives until the other end closes. `error()` is then 0 after an orderly close, else `errno`
    /// (ECONNRESET).
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

/// Closes standard input while it exists, so that the next descriptor is 0, as in a program that was started
/// without standard input.
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

/// Connects, and retries while macOS refuses because too many connections wait to be accepted.
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

/// Sends a request as a client and returns the reply, or nothing if there is none.
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

/// A listener in a temporary directory. Expects that no descriptor and no thread of a test is left at its
/// end.
class RelayTest : public testing::Test {
protected:
    using RelayListener = KeyloftCore::RelayListener;

    void SetUp() override {
        // A sanitizer starts a thread of its own along with the first thread of the program.
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
        // A joined thread may stay in /proc for a moment.
        EXPECT_TRUE(eventually([&] { return runningThreads() <= threads_; }))
            << runningThreads() << " threads, were " << threads_;
    }

    /// Listens and replies with "echo " and the request.
    void startEcho() {
        listener->listen(path, [this](const std::string& request, const RelayListener::Reply& reply) {
            requests.signal();
            reply("echo " + request);
        });
    }

    /// Listens and keeps each request and its reply function.
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
