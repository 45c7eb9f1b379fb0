#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Platform {

/// Why something failed that the system reports by domain and code, a page load above all. A plain value.
struct Error {
    /// The domain of errors of loading a URL.
    static constexpr std::string_view urlDomain = "NSURLErrorDomain";
    /// Codes of that domain.
    static constexpr int urlCancelled = -999;
    static constexpr int urlTimedOut = -1001;
    static constexpr int urlCannotFindHost = -1003;
    static constexpr int urlCannotConnectToHost = -1004;
    static constexpr int urlNetworkConnectionLost = -1005;
    static constexpr int urlSecureConnectionFailed = -1200;
    static constexpr int urlServerCertificateUntrusted = -1202;

    /// The domain of the web engine's own errors.
    static constexpr std::string_view webKitDomain = "WebKitErrorDomain";
    static constexpr int webKitFrameLoadInterrupted = 102;
    static constexpr int webKitRestrictedPort = 103;

    /// `urlDomain`, `webKitDomain` or another one, and a code of that domain.
    std::string domain;
    int code = 0;
    /// A sentence to show to a person.
    std::string localizedDescription;
    /// The text of the URL that failed, where one is known.
    std::optional<std::string> failingURL;

    friend bool operator==(const Error&, const Error&) = default;
};

} // namespace Platform
