#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

/// Redirects standard error to a sequenced-packet socket for the lifetime of the object. Each write is
/// received as a separate packet.
class CapturedError {
public:
    CapturedError()
        : saved_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends_.data()), 0);
        dup2(ends_[1], STDERR_FILENO);
        close(ends_[1]);
    }
    CapturedError(const CapturedError&) = delete;
    CapturedError& operator=(const CapturedError&) = delete;
    ~CapturedError() {
        dup2(saved_, STDERR_FILENO);
        close(saved_);
        if (ends_[0] >= 0) {
            close(ends_[0]);
        }
    }

    std::string nextWrite() const {
        std::string packet(65'536, '\0');
        const auto count = recv(ends_[0], packet.data(), packet.size(), MSG_DONTWAIT);
        packet.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return packet;
    }

    /// Returns the messages that have been logged since the last call, in order and without their trailing
    /// newlines.
    std::vector<std::string> messages() const {
        std::vector<std::string> messages;
        for (auto write = nextWrite(); !write.empty(); write = nextWrite()) {
            write.pop_back();
            messages.push_back(std::move(write));
        }
        return messages;
    }

    void hangUp() { close(std::exchange(ends_[0], -1)); }

private:
    int saved_;
    std::array<int, 2> ends_ = {-1, -1};
};

} // namespace TestSupport
