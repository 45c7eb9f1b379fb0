#pragma once

#include "KeyloftCore/RelayTarget.h"
#include "KeyloftCore/ResponseMode.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// A validated Sign in with Apple authorize URL whose result is pending. A plain, immutable value type.
///
/// All comparisons are bytewise, without case folding or Unicode normalization.
class AuthorizeRequest {
public:
    /// The host that serves authorize URLs.
    static constexpr std::string_view authorizationHost = "appleid.apple.com";

    /// Validates `url` and reads the first "redirect_uri", "response_mode" and "state" parameters of its
    /// query. Does not validate `relayNonce`.
    ///
    /// Throws HostError::badRequest if `url` is not an https URL on the authorization host with the path
    /// "/auth/authorize", or if "redirect_uri" is missing or not an https URL.
    AuthorizeRequest(Platform::URL url, std::string relayNonce);

    /// The URL that was passed to the constructor.
    const Platform::URL& url() const { return url_; }
    /// The decoded "redirect_uri" parameter of the query.
    const Platform::URL& redirectURI() const { return redirectURI_; }
    /// The requested response mode, or `query` if the URL specifies no response mode or an unknown one.
    ResponseMode responseMode() const { return responseMode_; }
    /// The decoded "state" parameter of the query. Absent if the query has no such parameter, or if the
    /// parameter has no "=" or does not decode to UTF-8. "state=" specifies an empty state.
    const std::optional<std::string>& state() const { return state_; }
    /// The nonce that was passed to the constructor.
    const std::string& relayNonce() const { return relayNonce_; }

    /// Returns true if `url` has the same scheme, host, effective port and path as the redirect URI. An empty
    /// path is equivalent to "/". Ignores the query, the fragment and credentials. Returns false if the host
    /// or path of either URL does not decode to UTF-8, or if the port of either URL does not fit in 64 bits.
    bool matchesRedirect(const Platform::URL& url) const;

    /// Returns true if `value` is a string that is equal to the nonce of this request. `value` may be null.
    bool matchesNonce(const Platform::JSONValue* value) const;

    /// Returns a relay target with the redirect URI, state and nonce of this request.
    RelayTarget relayTarget() const;

    /// Returns the authorize URL for the relay: the URL of this request with the first "response_mode" set to
    /// "form_post" (appended if missing) and the relay target as its fragment. All other parts keep their
    /// encoding.
    Platform::URL safariRelayURL() const;

    /// Returns the port of `url`, or the default port of "https" (443) or "http" (80) if `url` has no port.
    /// Returns nothing for a URL of another scheme without a port.
    static std::optional<std::int64_t> effectivePort(const Platform::URL& url);

private:
    Platform::URL url_;
    Platform::URL redirectURI_;
    ResponseMode responseMode_ = ResponseMode::query;
    std::optional<std::string> state_;
    std::string relayNonce_;
};

} // namespace KeyloftCore
