#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// An error, for example of a page load, that is identified by a domain and a code. A plain value type.
struct Error {
    /// The domain of URL loading errors.
    static constexpr std::string_view urlDomain = "NSURLErrorDomain";
    /// Codes in `urlDomain`.
    static constexpr int urlCancelled = -999;
    static constexpr int urlTimedOut = -1001;
    static constexpr int urlCannotFindHost = -1003;
    static constexpr int urlCannotConnectToHost = -1004;
    static constexpr int urlNetworkConnectionLost = -1005;
    static constexpr int urlSecureConnectionFailed = -1200;
    static constexpr int urlServerCertificateUntrusted = -1202;

    /// The domain of WebKit's own errors.
    static constexpr std::string_view webKitDomain = "WebKitErrorDomain";
    static constexpr int webKitFrameLoadInterrupted = 102;
    static constexpr int webKitRestrictedPort = 103;

    /// `urlDomain`, `webKitDomain` or another domain. The domain defines the meaning of `code`.
    std::string domain;
    int code = 0;
    /// A sentence to show to the user.
    std::string localizedDescription;
    /// The URL that failed, as a string, if known.
    std::optional<std::string> failingURL;

    friend bool operator==(const Error&, const Error&) = default;
};

} // namespace Platform
