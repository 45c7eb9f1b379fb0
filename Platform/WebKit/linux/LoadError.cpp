#include "Platform/WebKit/linux/LoadError.h"

#include <gio/gio.h>
#include <webkit/webkit.h>

#include <string>

namespace Platform {

namespace {

struct Kind {
    std::string domain;
    int code = 0;
};

Kind urlError(int code) { return {.domain = std::string(Error::urlDomain), .code = code}; }

Kind kindOfInputOutputError(const GError& error) {
    switch (error.code) {
    case G_IO_ERROR_CANCELLED:
        return urlError(Error::urlCancelled);
    case G_IO_ERROR_TIMED_OUT:
        return urlError(Error::urlTimedOut);
    case G_IO_ERROR_HOST_NOT_FOUND:
        return urlError(Error::urlCannotFindHost);
    case G_IO_ERROR_CONNECTION_REFUSED:
    case G_IO_ERROR_HOST_UNREACHABLE:
    case G_IO_ERROR_NETWORK_UNREACHABLE:
        return urlError(Error::urlCannotConnectToHost);
    case G_IO_ERROR_PARTIAL_INPUT:
    case G_IO_ERROR_CONNECTION_CLOSED: // Equal to G_IO_ERROR_BROKEN_PIPE.
        return urlError(Error::urlNetworkConnectionLost);
    default:
        return {.domain = g_quark_to_string(error.domain), .code = error.code};
    }
}

Kind kindOf(const GError& error) {
    if (error.domain == WEBKIT_NETWORK_ERROR && error.code == WEBKIT_NETWORK_ERROR_CANCELLED) {
        return urlError(Error::urlCancelled);
    }
    if (error.domain == WEBKIT_POLICY_ERROR) {
        return {.domain = std::string(Error::webKitDomain), .code = error.code};
    }
    if (error.domain == G_RESOLVER_ERROR) {
        return urlError(Error::urlCannotFindHost);
    }
    if (error.domain == G_TLS_ERROR) {
        return urlError(error.code == G_TLS_ERROR_BAD_CERTIFICATE ? Error::urlServerCertificateUntrusted
                                                                  : Error::urlSecureConnectionFailed);
    }
    if (error.domain == G_IO_ERROR) {
        return kindOfInputOutputError(error);
    }
    return {.domain = g_quark_to_string(error.domain), .code = error.code};
}

} // namespace

std::optional<Error> loadError(const GError& error, const char* failingURI) {
    if (error.domain == WEBKIT_MEDIA_ERROR && error.code == WEBKIT_MEDIA_ERROR_WILL_HANDLE_LOAD) {
        return std::nullopt;
    }
    Kind kind = kindOf(error);
    Error result{.domain = std::move(kind.domain),
                 .code = kind.code,
                 .localizedDescription = error.message ? error.message : "",
                 .failingURL = std::nullopt};
    // GLib's text is "Unacceptable TLS certificate".
    if (g_error_matches(&error, G_TLS_ERROR, G_TLS_ERROR_BAD_CERTIFICATE)) {
        result.localizedDescription = "The server's certificate is not valid or not trusted.";
    }
    if (failingURI && *failingURI) {
        result.failingURL = failingURI;
    }
    return result;
}

Error timedOutError(const std::optional<std::string>& failingURL) {
    return {.domain = std::string(Error::urlDomain),
            .code = Error::urlTimedOut,
            .localizedDescription = "The request timed out.",
            .failingURL = failingURL};
}

Error restrictedPortError(const std::optional<std::string>& failingURL) {
    return {.domain = std::string(Error::webKitDomain),
            .code = Error::webKitRestrictedPort,
            .localizedDescription = "Web pages may not use this port, because other services do.",
            .failingURL = failingURL};
}

} // namespace Platform
