#pragma once

#include "Platform/POSIX/Descriptor.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

struct HTTPRequest {
    std::string method;
    /// Without the query.
    std::string path;
    /// Without "?"; empty when there is none.
    std::string query;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
};

struct HTTPResponse {
    /// What becomes of the connection.
    enum class Ending {
        /// The whole answer is sent.
        complete,
        /// Nothing is sent until `HTTPServer::release`, then the whole answer.
        held,
        /// Head and body are sent, and the rest that the head promises never comes.
        unfinished,
        /// Head and body are sent, the head promising more, and the connection is closed.
        cutShort,
        /// The connection is closed without an answer.
        dropped,
    };

    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    Ending ending = Ending::complete;

    /// A page that is asked for again each time it is shown.
    static HTTPResponse html(const std::string& body);
    /// The same, of this title.
    static HTTPResponse page(const std::string& title);
    static HTTPResponse redirect(const std::string& location, int status = 302);

    /// The same with another end.
    HTTPResponse withEnding(Ending other) const;
};

/// A web server on a free port of loopback, on a thread of its own, that answers as the test says. Everything
/// may be called from any thread; routes are called on the server's, one at a time, and must not call the
/// server.
class HTTPServer {
public:
    using Route = std::function<HTTPResponse(const HTTPRequest&)>;

    HTTPServer();
    HTTPServer(const HTTPServer&) = delete;
    HTTPServer& operator=(const HTTPServer&) = delete;
    ~HTTPServer();

    int port() const;
    /// The URL of `path`, which begins with "/".
    std::string url(const std::string& path) const;

    /// Answers requests for `path`; whatever has no route gets a 404.
    void route(const std::string& path, Route route);
    void route(const std::string& path, const HTTPResponse& response);

    /// Sends the answers of `path` that are held; later ones are held again.
    void release(const std::string& path);

    /// How many requests for `path` have come, and those themselves, in order.
    std::size_t count(const std::string& path) const;
    std::vector<HTTPRequest> requests(const std::string& path) const;

    /// A port of loopback on which nobody listens, as long as the object lives.
    class RefusedPort {
    public:
        RefusedPort();
        int port() const { return port_; }

    private:
        Platform::Descriptor descriptor_;
        int port_ = 0;
    };

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace TestSupport
