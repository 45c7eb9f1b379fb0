#include "KeyloftCore/RelayListener.h"

#include "KeyloftCore/FrameDecoder.h"
#include "KeyloftCore/NativeMessageFrame.h"
#include "KeyloftCore/RelaySocketAddress.h"
#include "KeyloftCore/RelaySocketError.h"
#include "Platform/Dispatch/ReadSource.h"
#include "Platform/Dispatch/SerialQueue.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/FileManager.h"
#include "Platform/POSIX/UnixSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <future>
#include <optional>
#include <utility>
#include <vector>

namespace KeyloftCore {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t readSize = 65'536;
constexpr int backlog = 4;
constexpr mode_t directoryMode = 0700;
constexpr mode_t socketMode = 0600;
constexpr mode_t maskForBind = 0077;
constexpr std::chrono::seconds sendTimeout(3);

/// The delay before the listener accepts connections again after `accept` has failed because of a shortage of
/// resources. The listener has to retry, because it is not notified when another part of the process closes a
/// file descriptor.
constexpr std::chrono::milliseconds pauseWithoutDescriptors(1000);

/// Identifies a file by its device and inode.
struct FileIdentity {
    dev_t dev;
    ino_t ino;

    static std::optional<FileIdentity> of(const std::string& path) {
        struct stat status = {};
        if (stat(path.c_str(), &status) != 0) {
            return std::nullopt;
        }
        return FileIdentity{.dev = status.st_dev, .ino = status.st_ino};
    }

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// Returns true if `accept` failed because the process or the kernel has run out of file descriptors or
/// memory. The connection then remains in the backlog, and the accept source would fire again immediately and
/// indefinitely.
bool isShortage(int error) {
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

/// Writes all of `data`, removing the written bytes from its front. Returns false with `errno` set if a write
/// fails.
bool writeFromFront(int fd, std::string_view& data) {
    while (!data.empty()) {
        const auto written = Platform::writeWithoutSignal(fd, data.data(), data.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        data.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Waits until the socket is writable. Returns false if `deadline` passes first.
bool waitUntilWritable(int fd, Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd polled = {.fd = fd, .events = POLLOUT, .revents = 0};
    return left.count() > 0 && poll(&polled, 1, static_cast<int>(left.count())) != 0;
}

/// Writes one frame, but gives up after `sendTimeout`. SO_SNDTIMEO would not be sufficient, because it limits
/// each wait separately, so a peer that reads slowly would hardly ever exceed the limit.
void sendFrame(int fd, std::string_view payload) {
    const auto deadline = Clock::now() + sendTimeout;
    const auto frame = NativeMessageFrame::encode(payload);
    std::string_view rest = frame;
    while (!writeFromFront(fd, rest) && errno == EAGAIN && waitUntilWritable(fd, deadline)) {
    }
}

struct Connection {
    Connection(Platform::SerialQueue& queue, int descriptor)
        : fd(descriptor)
        , source(queue, descriptor) {}

    const int fd;
    FrameDecoder decoder;
    Platform::ReadSource source;
};

} // namespace

/// The state of a listener. Callbacks hold weak pointers to the state and do not refer to the listener
/// itself.
struct RelayListener::State : std::enable_shared_from_this<RelayListener::State> {
    void listen(const std::string& path, OnFrame onFrame);
    void stop();
    void release();

    void acceptOne(int listening, const std::shared_ptr<const OnFrame>& onFrame);
    void pauseAccepting();
    void resumeAccepting();
    void open(int connectionDescriptor, const std::shared_ptr<const OnFrame>& onFrame);
    void readOnce(const std::shared_ptr<Connection>& connection, const OnFrame& onFrame);
    Reply replyFor(const std::shared_ptr<Connection>& connection);

    // These members are accessed only by functions that the owner of the listener calls.
    std::future<void> listeningClosed;
    std::optional<std::string> path;
    std::optional<FileIdentity> inode;
    // These members are accessed only on the queue once the listener is listening.
    std::shared_ptr<Platform::ReadSource> acceptSource;
    std::vector<std::shared_ptr<Connection>> readers;
    bool acceptingPaused = false;
    std::array<char, readSize> buffer;
    // The queue must be the last member, so that it is destroyed first: work items that are still running on
    // it may use the other members.
    Platform::SerialQueue queue{"velde.orvane.keyloft.relay-listener"};
};

RelayListener::RelayListener()
    : state_(std::make_shared<State>()) {}

RelayListener::~RelayListener() {
    if (state_->queue.isCurrent()) {
        state_->stop();
        state_->release();
    } else {
        close();
    }
}

void RelayListener::listen(const std::string& path, OnFrame onFrame) {
    state_->listen(path, std::move(onFrame));
}

void RelayListener::close() {
    state_->queue.sync([this] { state_->stop(); });
    if (state_->listeningClosed.valid()) {
        state_->listeningClosed.get();
    }
    state_->release();
}

bool RelayListener::writeAll(int fd, std::string_view data) { return writeFromFront(fd, data); }

void RelayListener::State::listen(const std::string& socketPath, OnFrame onFrame) {
    if (!onFrame) {
        Platform::fatalError("RelayListener::listen was called without a frame handler");
    }
    requirePathWithoutNUL(socketPath);
    // The path may end with a slash. Append a slash if it does not, then remove the empty last component and
    // the file name.
    const auto directory = (std::filesystem::path(socketPath) / "").parent_path().parent_path();
    Platform::FileManager::defaultManager().createDirectory(directory.string(), directoryMode);
    unlink(socketPath.c_str());
    const auto address = sockaddrUn(socketPath);
    const int listening = Platform::openUnixSocket();
    if (listening < 0) {
        throw RelaySocketError::syscall("socket", errno);
    }

    // The umask applies to the whole process. Do nothing but bind between the two umask calls.
    const auto mask = umask(maskForBind);
    const int bound = Platform::bindUnixSocket(listening, address);
    const int bindError = errno;
    umask(mask);
    if (bound != 0) {
        ::close(listening);
        throw RelaySocketError::syscall("bind", bindError);
    }
    chmod(socketPath.c_str(), socketMode);
    if (::listen(listening, backlog) != 0) {
        const int error = errno;
        ::close(listening);
        unlink(socketPath.c_str());
        throw RelaySocketError::syscall("listen", error);
    }

    // The client may disconnect before the accept source fires. `accept` must not block in that case.
    fcntl(listening, F_SETFL, O_NONBLOCK);

    path = socketPath;
    inode = FileIdentity::of(socketPath);
    acceptSource = std::make_shared<Platform::ReadSource>(queue, listening);
    acceptSource->setEventHandler(
        [weak = weak_from_this(), listening, handler = std::make_shared<const OnFrame>(std::move(onFrame))] {
            if (const auto self = weak.lock()) {
                self->acceptOne(listening, handler);
            }
        });
    // Close the socket only in the cancel handler, because Dispatch may watch the file descriptor until then.
    const auto closed = std::make_shared<std::promise<void>>();
    listeningClosed = closed->get_future();
    acceptSource->setCancelHandler([listening, closed] {
        ::close(listening);
        closed->set_value();
    });
    acceptSource->resume();
}

/// Cancels the sources of the listening socket and of all connections. Their cancel handlers close the
/// sockets later. Must be called on the queue.
void RelayListener::State::stop() {
    if (const auto source = std::exchange(acceptSource, nullptr)) {
        source->cancel();
    }
    for (const auto& connection : readers) {
        connection->source.cancel();
    }
}

void RelayListener::State::release() {
    if (path) {
        // Do not remove the file if another listener has replaced it with its own socket.
        if (inode && FileIdentity::of(*path) == inode) {
            unlink(path->c_str());
        }
        path.reset();
        inode.reset();
    }
}

void RelayListener::State::acceptOne(int listening, const std::shared_ptr<const OnFrame>& onFrame) {
    const int connection = Platform::acceptUnixSocket(listening);
    if (connection < 0) {
        if (isShortage(errno)) {
            pauseAccepting();
        }
        return;
    }
    if (Platform::unixSocketPeerUser(connection) != getuid()) {
        ::close(connection);
        return;
    }
    // Writes do not block, unless a forked child clears the O_NONBLOCK flag, which the child shares with this
    // process. Set a time limit for that case.
    Platform::setSendTimeout(connection, sendTimeout);
    open(connection, onFrame);
}

void RelayListener::State::pauseAccepting() {
    acceptingPaused = true;
    acceptSource->suspend();
    queue.asyncAfter(pauseWithoutDescriptors, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->resumeAccepting();
        }
    });
}

void RelayListener::State::resumeAccepting() {
    if (std::exchange(acceptingPaused, false) && acceptSource) {
        acceptSource->resume();
    }
}

void RelayListener::State::open(int connectionDescriptor, const std::shared_ptr<const OnFrame>& onFrame) {
    const auto connection = std::make_shared<Connection>(queue, connectionDescriptor);
    const auto weak = weak_from_this();
    // The handlers of the source must not own the connection, because the connection owns the source. A
    // long-lived `Reply` keeps the memory of its connection allocated, but does not keep the socket open.
    const std::weak_ptr<Connection> weakConnection = connection;
    connection->source.setEventHandler([weak, weakConnection, onFrame] {
        const auto self = weak.lock();
        const auto reading = weakConnection.lock();
        if (self && reading) {
            self->readOnce(reading, *onFrame);
        }
    });
    connection->source.setCancelHandler([weak, connectionDescriptor, identity = connection.get()] {
        ::close(connectionDescriptor);
        if (const auto self = weak.lock()) {
            std::erase_if(self->readers, [&](const auto& reader) { return reader.get() == identity; });
            self->resumeAccepting();
        }
    });
    readers.push_back(connection);
    connection->source.resume();
}

void RelayListener::State::readOnce(const std::shared_ptr<Connection>& connection, const OnFrame& onFrame) {
    // Clang 22's static analyzer mistakes weak_ptr::lock in the callers for a mutex lock (not reported).
    // NOLINTNEXTLINE(clang-analyzer-unix.BlockInCriticalSection)
    const ssize_t count = read(connection->fd, buffer.data(), buffer.size());
    if (count < 0 && errno == EAGAIN) {
        return; // stale event: no data is available
    }
    if (count <= 0) {
        connection->source.cancel();
        return;
    }
    std::vector<std::string> payloads;
    try {
        payloads = connection->decoder.append({buffer.data(), static_cast<std::size_t>(count)});
        if (payloads.empty()) {
            return;
        }
    } catch (const NativeMessageFrame::DecodeError&) {
        connection->source.cancel();
        return;
    }
    onFrame(std::move(payloads.front()), replyFor(connection));
}

RelayListener::Reply RelayListener::State::replyFor(const std::shared_ptr<Connection>& connection) {
    return [weak = weak_from_this(), connection](std::string payload) {
        const auto self = weak.lock();
        if (!self) {
            return;
        }
        self->queue.async([weak, connection, payload = std::move(payload)] {
            const auto listener = weak.lock();
            if (!listener || connection->source.isCancelled()) {
                return;
            }
            sendFrame(connection->fd, payload);
            connection->source.cancel();
        });
    };
}

} // namespace KeyloftCore
