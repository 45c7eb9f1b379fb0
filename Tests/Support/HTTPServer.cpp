#include "Tests/Support/HTTPServer.h"

#include "Platform/Foundation/Characters.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>

namespace TestSupport {

namespace {

/// Binds to a free port on the loopback interface and returns the port.
int bindToLoopback(int descriptor) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "test server's port");
    }
    return ntohs(address.sin_port);
}

void sendAll(int descriptor, std::string_view data) {
    while (!data.empty()) {
        const ssize_t size = ::send(descriptor, data.data(), data.size(), MSG_NOSIGNAL);
        if (size < 0) {
            return; // the client may close the connection at any time
        }
        data.remove_prefix(static_cast<std::size_t>(size));
    }
}

/// Parses the request at the beginning of `text`. Returns `std::nullopt` if the request is incomplete.
std::optional<HTTPRequest> parse(std::string_view text) {
    const auto end = text.find("\r\n\r\n");
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    HTTPRequest request;
    auto head = text.substr(0, end);
    const auto nextLine = [&head] {
        const auto lineEnd = head.find("\r\n");
        const auto line = head.substr(0, lineEnd);
        head.remove_prefix(lineEnd == std::string_view::npos ? head.size() : lineEnd + 2);
        return line;
    };
    const auto first = nextLine();
    const auto methodEnd = first.find(' ');
    const auto targetEnd = first.rfind(' ');
    request.method = first.substr(0, methodEnd);
    const auto target = first.substr(methodEnd + 1, targetEnd - methodEnd - 1);
    const auto question = target.find('?');
    request.path = target.substr(0, question);
    if (question != std::string_view::npos) {
        request.query = target.substr(question + 1);
    }
    while (!head.empty()) {
        const auto line = nextLine();
        const auto colon = line.find(':');
        auto value = line.substr(colon + 1);
        value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
        request.headers[Platform::asciiLowercased(line.substr(0, colon))] = value;
    }
    std::size_t bodySize = 0;
    if (const auto length = request.headers.find("content-length"); length != request.headers.end()) {
        const auto& digits = length->second;
        std::from_chars(digits.data(), digits.data() + digits.size(), bodySize);
    }
    const auto body = text.substr(end + 4);
    if (body.size() < bodySize) {
        return std::nullopt;
    }
    request.body = body.substr(0, bodySize);
    return request;
}

std::string serialize(const HTTPResponse& response) {
    using Ending = HTTPResponse::Ending;
    // Number of bytes by which Content-Length exceeds the size of an incomplete body.
    constexpr std::size_t missing = 100000;
    const bool isWhole = response.ending == Ending::complete || response.ending == Ending::held;
    std::string text = "HTTP/1.1 " + std::to_string(response.status) + " Status\r\n";
    for (const auto& [name, value] : response.headers) {
        text.append(name).append(": ").append(value).append("\r\n");
    }
    text += "Connection: close\r\nContent-Length: " +
            std::to_string(response.body.size() + (isWhole ? 0 : missing)) + "\r\n\r\n";
    return text + response.body;
}

} // namespace

HTTPResponse HTTPResponse::html(const std::string& body) {
    return {.status = 200,
            .headers = {{"Content-Type", "text/html; charset=utf-8"}, {"Cache-Control", "no-store"}},
            .body = body};
}

HTTPResponse HTTPResponse::page(const std::string& title) {
    return html("<!DOCTYPE html><title>" + title + "</title><p>" + title);
}

HTTPResponse HTTPResponse::redirect(const std::string& location, int status) {
    return {.status = status, .headers = {{"Location", location}}, .body = {}};
}

HTTPResponse HTTPResponse::withEnding(Ending other) const {
    auto response = *this;
    response.ending = other;
    return response;
}

class HTTPServer::Implementation {
public:
    Implementation()
        : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "test server's socket")
        , wakeUp_(::eventfd(0, EFD_CLOEXEC), "test server's event") {
        port_ = bindToLoopback(listener_.get());
        if (::listen(listener_.get(), SOMAXCONN) != 0) {
            throw std::system_error(errno, std::generic_category(), "test server");
        }
        thread_ = std::thread([this] { run(); });
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    ~Implementation() {
        {
            const std::scoped_lock lock(mutex_);
            stopped_ = true;
        }
        wake();
        thread_.join();
    }

    int port() const { return port_; }

    void route(const std::string& path, Route route) {
        const std::scoped_lock lock(mutex_);
        routes_[path] = std::move(route);
    }

    void release(const std::string& path) {
        {
            const std::scoped_lock lock(mutex_);
            released_.push_back(path);
        }
        wake();
    }

    std::vector<HTTPRequest> requests(const std::string& path) const {
        const std::scoped_lock lock(mutex_);
        std::vector<HTTPRequest> result;
        std::ranges::copy_if(requests_, std::back_inserter(result),
                             [&path](const HTTPRequest& request) { return request.path == path; });
        return result;
    }

private:
    struct Connection {
        Platform::Descriptor descriptor;
        std::string received;
        /// The path of the request. Set when the request has been received completely.
        std::optional<std::string> path;
        /// The serialized response that `release` sends. Empty if no response is held.
        std::string heldAnswer;
        bool isDone = false;
    };

    void wake() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t size = ::write(wakeUp_.get(), &one, sizeof one);
    }

    void run() {
        while (true) {
            std::vector<pollfd> descriptors{{.fd = wakeUp_.get(), .events = POLLIN, .revents = 0},
                                            {.fd = listener_.get(), .events = POLLIN, .revents = 0}};
            for (const auto& connection : connections_) {
                descriptors.push_back({.fd = connection.descriptor.get(), .events = POLLIN, .revents = 0});
            }
            if (::poll(descriptors.data(), descriptors.size(), -1) < 0) {
                continue;
            }
            if (descriptors[0].revents != 0 && !obey()) {
                return;
            }
            for (std::size_t index = 2; index < descriptors.size(); ++index) {
                if (descriptors[index].revents != 0) {
                    read(connections_[index - 2]);
                }
            }
            if (descriptors[1].revents != 0) {
                accept();
            }
            std::erase_if(connections_, [](const Connection& connection) { return connection.isDone; });
        }
    }

    /// Handles the calls that other threads have queued. Returns false if the server must stop.
    bool obey() {
        std::uint64_t times = 0;
        [[maybe_unused]] const ssize_t size = ::read(wakeUp_.get(), &times, sizeof times);
        const std::scoped_lock lock(mutex_);
        for (const auto& path : std::exchange(released_, {})) {
            for (auto& connection : connections_) {
                if (connection.path == path && !connection.heldAnswer.empty()) {
                    sendAll(connection.descriptor.get(), connection.heldAnswer);
                    connection.isDone = true;
                }
            }
        }
        return !stopped_;
    }

    void accept() {
        const int descriptor = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor >= 0) {
            connections_.push_back({.descriptor = Platform::Descriptor(descriptor),
                                    .received = {},
                                    .path = std::nullopt,
                                    .heldAnswer = {},
                                    .isDone = false});
        }
    }

    void read(Connection& connection) {
        std::array<char, 16384> buffer{};
        const ssize_t size = ::recv(connection.descriptor.get(), buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            connection.isDone = true;
            return;
        }
        if (connection.path) {
            return; // one request per connection
        }
        connection.received.append(buffer.data(), static_cast<std::size_t>(size));
        if (const auto request = parse(connection.received)) {
            answer(connection, *request);
        }
    }

    void answer(Connection& connection, const HTTPRequest& request) {
        connection.path = request.path;
        Route route;
        {
            const std::scoped_lock lock(mutex_);
            requests_.push_back(request);
            if (const auto found = routes_.find(request.path); found != routes_.end()) {
                route = found->second;
            }
        }
        HTTPResponse response{.status = 404, .headers = {{"Content-Type", "text/plain"}}, .body = "no route"};
        if (route) {
            response = route(request);
        }
        switch (response.ending) {
        case HTTPResponse::Ending::held:
            connection.heldAnswer = serialize(response);
            return;
        case HTTPResponse::Ending::dropped:
            break;
        case HTTPResponse::Ending::unfinished:
            sendAll(connection.descriptor.get(), serialize(response));
            return;
        case HTTPResponse::Ending::complete:
        case HTTPResponse::Ending::cutShort:
            sendAll(connection.descriptor.get(), serialize(response));
            break;
        }
        connection.isDone = true;
    }

    Platform::Descriptor listener_;
    Platform::Descriptor wakeUp_;
    int port_ = 0;
    std::vector<Connection> connections_; // used only on the server's thread
    mutable std::mutex mutex_;            // guards the following members
    std::map<std::string, Route> routes_;
    std::vector<HTTPRequest> requests_;
    std::vector<std::string> released_;
    bool stopped_ = false;
    std::thread thread_;
};

HTTPServer::HTTPServer()
    : implementation_(std::make_unique<Implementation>()) {}

HTTPServer::~HTTPServer() = default;

int HTTPServer::port() const { return implementation_->port(); }

std::string HTTPServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port()) + path;
}

void HTTPServer::route(const std::string& path, Route route) {
    implementation_->route(path, std::move(route));
}

void HTTPServer::route(const std::string& path, const HTTPResponse& response) {
    route(path, [response](const HTTPRequest&) { return response; });
}

void HTTPServer::release(const std::string& path) { implementation_->release(path); }

std::size_t HTTPServer::count(const std::string& path) const { return requests(path).size(); }

std::vector<HTTPRequest> HTTPServer::requests(const std::string& path) const {
    return implementation_->requests(path);
}

HTTPServer::RefusedPort::RefusedPort()
    : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "test server's socket") {
    // Bind to the port, so that no other process can use it. The kernel refuses connections because the
    // socket does not listen.
    port_ = bindToLoopback(descriptor_.get());
}

} // namespace TestSupport
