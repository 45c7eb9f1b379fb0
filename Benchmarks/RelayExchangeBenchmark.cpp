// Compares a complete exchange through the relay (connect, request, reply, close) with an exchange of the
// same bytes through plain system calls.
//
// The plain exchange has three variants. "plain" only transfers the bytes. "plain, checked" also provides the
// guarantees of the relay: it checks the peer's user ID, and sets a time limit for writing and for reading
// a reply. "plain, checked, polled" does the same with a server that polls all its peers, as the relay does,
// instead of serving one peer at a time. "relay" sends a fixed reply; "relay, message judged" also
// computes the reply with RelayProtocol. The differences between the results show the cost of the
// guarantees, of serving several peers, and of the library.
//
// Targets for "relay": a median at most 1.25 times that of "plain", and at least 0.85 times as many exchanges
// per second.
//
// Each server runs in a separate process. The clients run in this process. They switch between the servers
// after short blocks of exchanges and begin each round with a different server, so that other load on the
// machine affects all servers equally. Prints medians, 99th percentiles, exchanges per second and the ratios
// to "plain".
//
// All clients are pinned to one CPU and all servers to another, because the scheduler's choice of CPU can
// affect the results more than anything else. If only one CPU is available (taskset -c 0), clients and
// servers share it.

#include "KeyloftCore/AuthorizeRequest.h"
#include "KeyloftCore/NativeMessageFrame.h"
#include "KeyloftCore/RelayListener.h"
#include "KeyloftCore/RelayProtocol.h"
#include "KeyloftCore/RelaySocketClient.h"
#include "Platform/Foundation/JSON.h"
#include "Tests/Support/Present.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Platform::JSONValue;

constexpr std::string_view nonce = "ABCDEFGHIJKLMNOPQRST-_";
constexpr std::string_view redirect = "https://client.example/callback/of/some/length?and=a&query=string";

std::string confirmMessage() {
    const JSONValue::Object message{
        {"type", "confirm"}, {"redirectUri", redirect}, {"state", std::string(150, 's')}, {"nonce", nonce}};
    return Platform::compactJSON(message, Platform::JSONSlashes::plain);
}

KeyloftCore::AuthorizeRequest pendingRequest() {
    const auto url =
        "https://appleid.apple.com/auth/authorize?redirect_uri=https://client.example/callback/of/some/"
        "length&state=" +
        std::string(150, 's');
    return {TestSupport::present(Platform::URL::fromString(url)), std::string(nonce)};
}

std::string replyMessage() {
    return Platform::compactJSON(KeyloftCore::RelayProtocol::reply(confirmMessage(), pendingRequest()).json(),
                                 Platform::JSONSlashes::plain);
}

void require(bool condition, const char* what) {
    if (!condition) {
        std::perror(what);
        std::_Exit(1);
    }
}

bool readFully(int descriptor, char* bytes, std::size_t count) {
    std::size_t got = 0;
    while (got < count) {
        const auto now = read(descriptor, bytes + got, count - got);
        if (now < 0 && errno == EINTR) {
            continue;
        }
        if (now <= 0) {
            return false;
        }
        got += static_cast<std::size_t>(now);
    }
    return true;
}

bool writeFully(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto now = send(descriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (now < 0 && errno == EINTR) {
            continue;
        }
        if (now <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(now));
    }
    return true;
}

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

void stayOn(int processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    require(sched_setaffinity(0, sizeof set, &set) == 0, "sched_setaffinity");
}

/// Returns the CPUs on which this process may run.
std::vector<int> processors() {
    cpu_set_t set;
    require(sched_getaffinity(0, sizeof set, &set) == 0, "sched_getaffinity");
    std::vector<int> result;
    for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(processor, &set)) {
            result.push_back(processor);
        }
    }
    return result;
}

/// Runs `serve` in a child process that is pinned to one CPU. The constructor returns after `serve` has
/// called `ready`. The destructor kills the process.
class ServerProcess {
public:
    ServerProcess(int processor, const std::function<void(const std::function<void()>& ready)>& serve) {
        std::array<int, 2> ends = {};
        require(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
        process_ = fork();
        require(process_ >= 0, "fork");
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            stayOn(processor);
            serve([&] { require(write(ends[1], "x", 1) == 1, "write"); });
            std::_Exit(1);
        }
        char byte = 0;
        require(read(ends[0], &byte, 1) == 1, "server");
        close(ends[0]);
        close(ends[1]);
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;
    ~ServerProcess() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }

    /// Returns the CPU time used by all threads of the process.
    double processorMicroseconds() const {
        double total = 0;
        const auto tasks = "/proc/" + std::to_string(process_) + "/task";
        for (const auto& task : std::filesystem::directory_iterator(tasks)) {
            std::ifstream file(task.path() / "schedstat");
            double nanoseconds = 0;
            file >> nanoseconds;
            total += nanoseconds / 1e3;
        }
        return total;
    }

private:
    pid_t process_ = -1;
};

/// The checks and time limits that a plain exchange uses.
enum class Checks {
    none,
    sameAsRelay,
};

bool isOwnUser(int connection) {
    ucred peer = {};
    socklen_t length = sizeof peer;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.uid == getuid();
}

void setTimeout(int descriptor, int option, int seconds) {
    const timeval limit = {.tv_sec = seconds, .tv_usec = 0};
    setsockopt(descriptor, SOL_SOCKET, option, &limit, sizeof limit);
}

int listeningSocket(const std::string& path) {
    const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    require(listening >= 0, "socket");
    const auto address = addressOf(path);
    require(bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "bind");
    // Use the same backlog as the relay. A different backlog would change the work that is measured.
    require(listen(listening, 4) == 0, "listen");
    return listening;
}

[[noreturn]] void serveBare(const std::string& path, const std::string& request, const std::string& reply,
                            Checks checks, const std::function<void()>& ready) {
    const int listening = listeningSocket(path);
    ready();
    // Serve connections on a second thread, as the relay does.
    std::thread([&] {
        std::string buffer(request.size(), '\0');
        for (;;) {
            const int connection = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
            if (connection < 0) {
                continue;
            }
            if (checks == Checks::sameAsRelay) {
                require(isOwnUser(connection), "peer");
                setTimeout(connection, SO_SNDTIMEO, 3);
            }
            if (readFully(connection, buffer.data(), buffer.size())) {
                writeFully(connection, reply);
            }
            close(connection);
        }
    }).join();
    std::_Exit(1);
}

/// Like `serveBare` with `Checks::sameAsRelay`, but polls all connections, so that no peer blocks another.
[[noreturn]] void servePolled(const std::string& path, const std::string& request, const std::string& reply,
                              const std::function<void()>& ready) {
    const int listening = listeningSocket(path);
    const int wake = eventfd(0, EFD_CLOEXEC);
    require(wake >= 0, "eventfd");
    ready();
    std::thread([&] {
        std::string buffer(request.size(), '\0');
        std::vector<pollfd> polled{{.fd = wake, .events = POLLIN, .revents = 0},
                                   {.fd = listening, .events = POLLIN, .revents = 0}};
        for (;;) {
            require(poll(polled.data(), polled.size(), -1) > 0, "poll");
            for (std::size_t index = polled.size(); --index > 1;) {
                if (polled[index].revents == 0) {
                    continue;
                }
                // The request is small enough to arrive in a single read.
                const int connection = polled[index].fd;
                if (read(connection, buffer.data(), buffer.size()) == std::ssize(buffer)) {
                    writeFully(connection, reply);
                }
                close(connection);
                polled[index] = polled.back();
                polled.pop_back();
            }
            if (polled[1].revents != 0) {
                const int connection = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
                require(connection >= 0 && isOwnUser(connection), "peer");
                setTimeout(connection, SO_SNDTIMEO, 3);
                polled.push_back({.fd = connection, .events = POLLIN, .revents = 0});
            }
        }
    }).join();
    std::_Exit(1);
}

[[noreturn]] void serveRelay(const std::string& path, KeyloftCore::RelayListener::OnFrame onFrame,
                             const std::function<void()>& ready) {
    KeyloftCore::RelayListener listener;
    listener.listen(path, std::move(onFrame));
    ready();
    for (;;) {
        pause();
    }
}

void exchangeBare(const std::string& path, const std::string& request, std::size_t replySize, Checks checks) {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    require(descriptor >= 0, "socket");
    const auto address = addressOf(path);
    require(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "connect");
    require(writeFully(descriptor, request), "write");
    if (checks == Checks::sameAsRelay) {
        setTimeout(descriptor, SO_RCVTIMEO, 5);
    }
    std::array<char, 256> reply = {};
    require(readFully(descriptor, reply.data(), replySize), "read");
    close(descriptor);
}

void exchangeRelay(const std::string& path, const std::string& request, std::size_t replySize) {
    const auto client = KeyloftCore::RelaySocketClient::connect(path);
    client.writeFrame(request);
    const auto reply = client.readFrame(5);
    require(reply && reply->size() == replySize, "readFrame");
    client.close();
}

struct Contender {
    Contender(const char* title, const ServerProcess& process, std::function<void()> oneExchange)
        : name(title)
        , exchange(std::move(oneExchange))
        , server(process) {}

    const char* name;
    std::function<void()> exchange;
    const ServerProcess& server;
    double serverMicroseconds = 0;
    std::vector<double> microseconds;
    std::vector<double> perSecondAlone;
    std::vector<double> perSecondTogether;
};

double percentile(std::vector<double> values, double part) {
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

void timeEach(Contender& contender, int count) {
    const double before = contender.server.processorMicroseconds();
    for (int turn = 0; turn < count; ++turn) {
        const auto begin = Clock::now();
        contender.exchange();
        contender.microseconds.push_back(
            std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
    }
    contender.serverMicroseconds += contender.server.processorMicroseconds() - before;
}

double perSecond(const Contender& contender, int clients, std::chrono::milliseconds duration) {
    std::atomic<bool> stop = false;
    std::atomic<std::uint64_t> total = 0;
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(clients));
    const auto begin = Clock::now();
    for (int client = 0; client < clients; ++client) {
        threads.emplace_back([&] {
            std::uint64_t own = 0;
            while (!stop) {
                contender.exchange();
                ++own;
            }
            total += own;
        });
    }
    std::this_thread::sleep_for(duration);
    stop = true;
    for (auto& thread : threads) {
        thread.join();
    }
    return static_cast<double>(total) / std::chrono::duration<double>(Clock::now() - begin).count();
}

void compare(int rounds) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::string pattern = (std::filesystem::temp_directory_path() / "relay-benchmark-XXXXXX").string();
    require(mkdtemp(pattern.data()) != nullptr, "mkdtemp");
    const std::string directory = pattern;

    const std::string request = confirmMessage();
    const std::string reply = replyMessage();
    const std::string requestFrame = KeyloftCore::NativeMessageFrame::encode(request);
    const std::string replyFrame = KeyloftCore::NativeMessageFrame::encode(reply);
    const std::string barePath = directory + "/bare.sock";
    const std::string checkedPath = directory + "/checked.sock";
    const std::string polledPath = directory + "/polled.sock";
    const std::string relayPath = directory + "/relay.sock";
    const std::string hostPath = directory + "/host.sock";

    const auto allowed = processors();
    const int clientsPlace = allowed.front();
    const int serversPlace = allowed.back();
    stayOn(clientsPlace);
    {
        const ServerProcess bare(serversPlace, [&](const auto& ready) {
            serveBare(barePath, requestFrame, replyFrame, Checks::none, ready);
        });
        const ServerProcess checked(serversPlace, [&](const auto& ready) {
            serveBare(checkedPath, requestFrame, replyFrame, Checks::sameAsRelay, ready);
        });
        const ServerProcess polled(serversPlace, [&](const auto& ready) {
            servePolled(polledPath, requestFrame, replyFrame, ready);
        });
        const ServerProcess relay(serversPlace, [&](const auto& ready) {
            serveRelay(relayPath, [&](const std::string&, const auto& answer) { answer(reply); }, ready);
        });
        const ServerProcess host(serversPlace, [&](const auto& ready) {
            serveRelay(
                hostPath,
                [pending = pendingRequest()](const std::string& message, const auto& answer) {
                    const auto json = KeyloftCore::RelayProtocol::reply(message, pending).json();
                    answer(Platform::compactJSON(json, Platform::JSONSlashes::plain));
                },
                ready);
        });
        std::array contenders = {
            Contender("plain", bare,
                      [&] { exchangeBare(barePath, requestFrame, replyFrame.size(), Checks::none); }),
            Contender(
                "plain, checked", checked,
                [&] { exchangeBare(checkedPath, requestFrame, replyFrame.size(), Checks::sameAsRelay); }),
            Contender(
                "plain, checked, polled", polled,
                [&] { exchangeBare(polledPath, requestFrame, replyFrame.size(), Checks::sameAsRelay); }),
            Contender("relay", relay, [&] { exchangeRelay(relayPath, request, reply.size()); }),
            Contender("relay, message judged", host, [&] { exchangeRelay(hostPath, request, reply.size()); }),
        };
        for (auto& contender : contenders) {
            timeEach(contender, 500);
            contender.microseconds.clear();
            contender.serverMicroseconds = 0;
        }
        std::vector<Contender*> order;
        order.reserve(contenders.size());
        for (auto& contender : contenders) {
            order.push_back(&contender);
        }
        for (int round = 0; round < rounds; ++round) {
            std::ranges::rotate(order, order.begin() + 1);
            for (auto* contender : order) {
                timeEach(*contender, 300);
            }
        }
        for (int round = 0; round < std::max(3, rounds / 6); ++round) {
            std::ranges::rotate(order, order.begin() + 1);
            for (auto* contender : order) {
                contender->perSecondAlone.push_back(perSecond(*contender, 1, std::chrono::milliseconds(150)));
            }
            for (auto* contender : order) {
                contender->perSecondTogether.push_back(
                    perSecond(*contender, 8, std::chrono::milliseconds(150)));
            }
        }

        std::printf("request %zu bytes, reply %zu bytes, %zu exchanges each, clients and servers %s\n",
                    request.size(), reply.size(), contenders[0].microseconds.size(),
                    clientsPlace == serversPlace ? "on one processor" : "on a processor each");
        std::printf("%-24s %18s %18s %18s %18s %18s\n", "", "median us", "p99 us", "server's CPU us",
                    "1 client /s", "8 clients /s");
        const auto& floor = contenders[0];
        for (const auto& contender : contenders) {
            const auto cell = [&](double value, double base) {
                std::printf(" %10.1f (x%.2f)", value, value / base);
            };
            std::printf("%-24s", contender.name);
            cell(percentile(contender.microseconds, 0.5), percentile(floor.microseconds, 0.5));
            cell(percentile(contender.microseconds, 0.99), percentile(floor.microseconds, 0.99));
            cell(contender.serverMicroseconds / static_cast<double>(contender.microseconds.size()),
                 floor.serverMicroseconds / static_cast<double>(floor.microseconds.size()));
            cell(percentile(contender.perSecondAlone, 0.5), percentile(floor.perSecondAlone, 0.5));
            cell(percentile(contender.perSecondTogether, 0.5), percentile(floor.perSecondTogether, 0.5));
            std::printf("\n");
        }
    }
    std::filesystem::remove_all(directory);
}

} // namespace

int main(int argc, char** argv) {
    int rounds = 60;
    if (argc > 1) {
        const std::string_view digits = argv[1];
        rounds = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), rounds);
    }
    if (rounds < 1) {
        std::fprintf(stderr, "usage: %s [rounds]\n", argv[0]);
        return 2;
    }
    try {
        compare(rounds);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
