#include "Platform/WebKit/linux/LoadError.h"

#include "Platform/Foundation/URL.h"

#include <gio/gio.h>
#include <webkit/webkit.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace Platform {

namespace {

// The Fetch standard's list of bad ports, in ascending order.
constexpr auto restrictedPorts = std::to_array<std::int64_t>(
    {0,    1,    7,    9,    11,   13,   15,   17,   19,   20,   21,   22,   23,   25,   37,   42,   43,
     53,   69,   77,   79,   87,   95,   101,  102,  103,  104,  109,  110,  111,  113,  115,  117,  119,
     123,  135,  137,  139,  143,  161,  179,  389,  427,  465,  512,  513,  514,  515,  526,  530,  531,
     532,  540,  548,  554,  556,  563,  587,  601,  636,  989,  990,  993,  995,  1719, 1720, 1723, 2049,
     3659, 4045, 4190, 5060, 5061, 6000, 6566, 6665, 6666, 6667, 6668, 6669, 6679, 6697, 10080});
static_assert(std::ranges::is_sorted(restrictedPorts));

std::optional<int> urlErrorCode(const GError& error) {
    if (g_error_matches(&error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED)) {
        return Error::urlCancelled;
    }
    if (error.domain == G_RESOLVER_ERROR) {
        return Error::urlCannotFindHost;
    }
    if (error.domain == G_TLS_ERROR) {
        return error.code == G_TLS_ERROR_BAD_CERTIFICATE ? Error::urlServerCertificateUntrusted
                                                         : Error::urlSecureConnectionFailed;
    }
    if (error.domain != G_IO_ERROR) {
        return std::nullopt;
    }
    switch (error.code) {
    case G_IO_ERROR_CANCELLED:
        return Error::urlCancelled;
    case G_IO_ERROR_TIMED_OUT:
        return Error::urlTimedOut;
    case G_IO_ERROR_HOST_NOT_FOUND:
        return Error::urlCannotFindHost;
    case G_IO_ERROR_CONNECTION_REFUSED:
    case G_IO_ERROR_HOST_UNREACHABLE:
    case G_IO_ERROR_NETWORK_UNREACHABLE:
        return Error::urlCannotConnectToHost;
    case G_IO_ERROR_PARTIAL_INPUT:
    case G_IO_ERROR_CONNECTION_CLOSED: // Equal to G_IO_ERROR_BROKEN_PIPE.
        return Error::urlNetworkConnectionLost;
    default:
        return std::nullopt;
    }
}

const std::map<int, std::string>& urlErrorDescriptions() {
    static const std::map<int, std::string> descriptions{
        {Error::urlCancelled, "The load was cancelled."},
        {Error::urlTimedOut, "The request timed out."},
        {Error::urlCannotFindHost, "The server was not found. Check the address and the network."},
        {Error::urlCannotConnectToHost, "The server cannot be reached. Try again later."},
        {Error::urlNetworkConnectionLost, "The connection to the server was lost. Try again."},
        {Error::urlSecureConnectionFailed, "A secure connection to the server is not possible."},
        {Error::urlServerCertificateUntrusted, "The server's certificate is not valid or not trusted."},
    };
    return descriptions;
}

Error urlError(int code, const std::optional<std::string>& failingURL) {
    return {.domain = std::string(Error::urlDomain),
            .code = code,
            .localizedDescription = urlErrorDescriptions().at(code),
            .failingURL = failingURL};
}

} // namespace

std::optional<Error> loadError(const GError& error, const char* failingURI) {
    if (g_error_matches(&error, WEBKIT_MEDIA_ERROR, WEBKIT_MEDIA_ERROR_WILL_HANDLE_LOAD)) {
        return std::nullopt;
    }
    const auto failingURL = failingURI && *failingURI ? std::optional<std::string>(failingURI) : std::nullopt;
    if (const auto code = urlErrorCode(error)) {
        return urlError(*code, failingURL);
    }
    const bool isWebKits = error.domain == WEBKIT_POLICY_ERROR;
    return Error{.domain = isWebKits ? std::string(Error::webKitDomain) : g_quark_to_string(error.domain),
                 .code = error.code,
                 .localizedDescription = error.message ? error.message : "",
                 .failingURL = failingURL};
}

Error timedOutError(const std::optional<std::string>& failingURL) {
    return urlError(Error::urlTimedOut, failingURL);
}

bool usesRestrictedPort(const char* uri) {
    const auto url = URL::fromString(uri ? uri : "");
    if (!url || (url->scheme() != "http" && url->scheme() != "https")) {
        return false;
    }
    const auto port = url->port();
    return port && std::ranges::binary_search(restrictedPorts, *port);
}

Error restrictedPortError(const std::optional<std::string>& failingURL) {
    return {.domain = std::string(Error::webKitDomain),
            .code = Error::webKitRestrictedPort,
            .localizedDescription = "Web pages may not use this port, because other services do.",
            .failingURL = failingURL};
}

} // namespace Platform
