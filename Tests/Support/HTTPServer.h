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
    /// The path of the URL, without the query.
    std::string path;
    /// The query of the URL, without the "?". Empty if the URL has no query.
    std::string query;
    /// The header fields. Their names are in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
};

struct HTTPResponse {
    /// Determines how much of the response is sent, and whether the connection is closed.
    enum class Ending {
        /// The complete response is sent.
        complete,
        /// Nothing is sent until `HTTPServer::release` is called, which sends the complete response.
        held,
        /// The headers and the body are sent, but Content-Length announces more data. The connection stays
        /// open.
        unfinished,
        /// The headers and the body are sent, but Content-Length announces more data. The connection is
        /// closed.
        cutShort,
        /// The connection is closed without a response.
        dropped,
    };

    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    Ending ending = Ending::complete;

    /// Creates an HTML page that must not be cached, so that each load sends a request to the server.
    static HTTPResponse html(const std::string& body);
    /// Like `html`, but creates a page with this title.
    static HTTPResponse page(const std::string& title);
    static HTTPResponse redirect(const std::string& location, int status = 302);

    /// Returns a copy of this response with a different ending.
    HTTPResponse withEnding(Ending other) const;
};

/// An HTTP server on a free port on the loopback interface. It runs on its own thread, and its responses are
/// determined by the routes that the test sets. All functions are thread-safe. Routes are called on the
/// server's thread, one at a time, and must not call the server.
class HTTPServer {
public:
    using Route = std::function<HTTPResponse(const HTTPRequest&)>;

    HTTPServer();
    HTTPServer(const HTTPServer&) = delete;
    HTTPServer& operator=(const HTTPServer&) = delete;
    ~HTTPServer();

    int port() const;
    /// Returns the URL of `path`, which must begin with "/".
    std::string url(const std::string& path) const;

    /// Sets the response to requests for `path`. Requests for a path without a route get a 404 response.
    void route(const std::string& path, Route route);
    void route(const std::string& path, const HTTPResponse& response);

    /// Sends the responses for `path` that are currently held. Does not affect responses to later requests.
    void release(const std::string& path);

    /// The number of requests for `path` so far, and the requests themselves, in order.
    std::size_t count(const std::string& path) const;
    std::vector<HTTPRequest> requests(const std::string& path) const;

    /// A port on the loopback interface that refuses connections for the lifetime of the object.
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
