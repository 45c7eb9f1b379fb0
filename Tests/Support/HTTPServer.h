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
    /// Without "?". Empty if the URL has no query.
    std::string query;
    /// Names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
};

struct HTTPResponse {
    /// The end of the response and of its connection.
    enum class Ending {
        /// The complete response is sent.
        complete,
        /// Nothing is sent until `HTTPServer::release`, which sends the complete response.
        held,
        /// Head and body are sent. The head announces more, which never comes.
        unfinished,
        /// Head and body are sent. The head announces more, but the connection is closed.
        cutShort,
        /// The connection is closed without a response.
        dropped,
    };

    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    Ending ending = Ending::complete;

    /// A page that is not cached: the browser requests it each time.
    static HTTPResponse html(const std::string& body);
    /// The same with this title.
    static HTTPResponse page(const std::string& title);
    static HTTPResponse redirect(const std::string& location, int status = 302);

    /// A copy of this response with another ending.
    HTTPResponse withEnding(Ending other) const;
};

/// A web server on a free loopback port. It runs on a thread of its own and responds with the routes of the
/// test. All functions may be called from any thread. Routes are called on the server's thread, one at a
/// time, and must not call the server.
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

    /// Sets the response to requests for `path`. Requests for a path without a route get a 404.
    void route(const std::string& path, Route route);
    void route(const std::string& path, const HTTPResponse& response);

    /// Sends the held responses of `path`. Later responses are held again.
    void release(const std::string& path);

    /// The number of requests for `path` so far, and the requests themselves, in order.
    std::size_t count(const std::string& path) const;
    std::vector<HTTPRequest> requests(const std::string& path) const;

    /// A loopback port that refuses connections while the object exists.
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
