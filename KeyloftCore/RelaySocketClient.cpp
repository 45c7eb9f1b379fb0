#include "KeyloftCore/RelaySocketClient.h"

#include "KeyloftCore/FrameDecoder.h"
#include "KeyloftCore/NativeMessageFrame.h"
#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelaySocketAddress.h"
#include "KeyloftCore/RelaySocketError.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/POSIX/UnixSocket.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace KeyloftCore {

namespace {

constexpr std::size_t readSize = 65'536;

timeval timevalOf(double seconds) {
    double whole = 0;
    const double fraction = std::modf(seconds, &whole);
    using Seconds = decltype(timeval::tv_sec);
    // The maximum of `Seconds` cannot be represented as a double. Use the power of two above it (the negated
    // minimum) as an exclusive limit.
    constexpr double limit = -static_cast<double>(std::numeric_limits<Seconds>::min());
    if (!std::isfinite(seconds) || whole >= limit || whole < -limit) {
        Platform::fatalError("the timeout of readFrame is not finite or too large");
    }
    timeval time = {.tv_sec = static_cast<Seconds>(whole),
                    .tv_usec = static_cast<std::int32_t>(fraction * 1'000'000)};
    // SO_RCVTIMEO interprets zero as no timeout.
    if (seconds > 0 && time.tv_sec == 0 && time.tv_usec == 0) {
        time.tv_usec = 1;
    }
    return time;
}

} // namespace

RelaySocketClient RelaySocketClient::connect(const std::string& path) {
    const auto address = sockaddrUn(path);
    const int fd = Platform::openUnixSocket();
    if (fd < 0) {
        throw RelaySocketError::syscall("socket", errno);
    }
    if (Platform::connectUnixSocket(fd, address) != 0) {
        const int error = errno;
        ::close(fd);
        throw RelaySocketError::syscall("connect", error);
    }
    return RelaySocketClient(fd);
}

void RelaySocketClient::writeFrame(std::string_view payload) const {
    const auto frame = NativeMessageFrame::encode(payload);
    if (!RelayListener::writeAll(fd_, frame)) {
        throw RelaySocketError::syscall("write", errno);
    }
}

std::optional<std::string> RelaySocketClient::readFrame(double timeout) const {
    const timeval limit = timevalOf(timeout);
    if (timeout < 0) {
        return std::nullopt;
    }
    setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    FrameDecoder decoder;
    std::array<char, readSize> buffer; // filled by each read
    for (;;) {
        const auto count = read(fd_, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return std::nullopt;
        }
        try {
            auto payloads = decoder.append({buffer.data(), static_cast<std::size_t>(count)});
            if (!payloads.empty()) {
                return std::move(payloads.front());
            }
        } catch (const NativeMessageFrame::DecodeError&) {
            return std::nullopt;
        }
    }
}

void RelaySocketClient::close() const { ::close(fd_); }

} // namespace KeyloftCore
