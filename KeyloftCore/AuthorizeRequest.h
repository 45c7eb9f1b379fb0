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

/// A validated Sign in with Apple authorize URL whose result is pending. A plain, immutable value.
///
/// All comparisons are bytewise, without case folding or Unicode normalization.
class AuthorizeRequest {
public:
    /// The host that serves authorize URLs.
    static constexpr std::string_view authorizationHost = "appleid.apple.com";

    /// Validates `url` and reads the first "redirect_uri", "response_mode" and "state" of its query. Does not
    /// check `relayNonce`.
    ///
    /// Throws HostError::badRequest if the URL is not https on the authorization host with the path
    /// "/auth/authorize", or else if "redirect_uri" is missing or not an https URL.
    AuthorizeRequest(Platform::URL url, std::string relayNonce);

    /// The URL as given.
    const Platform::URL& url() const { return url_; }
    /// The query's "redirect_uri", decoded.
    const Platform::URL& redirectURI() const { return redirectURI_; }
    /// `query` if the URL names no response mode or an unknown one.
    ResponseMode responseMode() const { return responseMode_; }
    /// Absent if the URL has no state, a state without "=", or one that does not decode to UTF-8. "state=" is
    /// an empty state.
    const std::optional<std::string>& state() const { return state_; }
    /// The nonce as given.
    const std::string& relayNonce() const { return relayNonce_; }

    /// Returns true if `url` has the redirect URI's scheme, host, effective port and path; an empty path
    /// equals "/". Ignores query, fragment and credentials. A host or path that does not decode to UTF-8, and
    /// a port too large for an integer, match nothing.
    bool matchesRedirect(const Platform::URL& url) const;

    /// Returns true if `value` is a string that equals this request's nonce. `value` may be null.
    bool matchesNonce(const Platform::JSONValue* value) const;

    /// This request's redirect URI, state and nonce.
    RelayTarget relayTarget() const;

    /// The authorize URL for the relay. Its first "response_mode" is "form_post", which is appended if there
    /// is none, and its fragment is the relay target. Everything else keeps its encoding.
    Platform::URL safariRelayURL() const;

    /// The port of `url`, or else the default port of "https" (443) or "http" (80). Absent for other schemes
    /// without a port.
    static std::optional<std::int64_t> effectivePort(const Platform::URL& url);

private:
    Platform::URL url_;
    Platform::URL redirectURI_;
    ResponseMode responseMode_ = ResponseMode::query;
    std::optional<std::string> state_;
    std::string relayNonce_;
};

} // namespace KeyloftCore
