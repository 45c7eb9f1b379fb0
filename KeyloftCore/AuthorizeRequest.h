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

/// A validated Sign in with Apple authorize URL that waits for its result. A plain value, never changed once
/// made.
///
/// All comparisons are of bytes: no case folding, no canonical equivalence.
class AuthorizeRequest {
public:
    /// The one host that serves authorize URLs.
    static constexpr std::string_view authorizationHost = "appleid.apple.com";

    /// Validates `url` and reads its query's first "redirect_uri", "response_mode" and "state". `relayNonce`
    /// is taken as it is.
    ///
    /// Throws HostError::badRequest: first where the URL is not https on the authorization host with the path
    /// "/auth/authorize", then where "redirect_uri" is missing or not an https URL.
    AuthorizeRequest(Platform::URL url, std::string relayNonce);

    /// As it was given.
    const Platform::URL& url() const { return url_; }
    /// The query's "redirect_uri", decoded.
    const Platform::URL& redirectURI() const { return redirectURI_; }
    /// `query` where the URL names none, or none that is known.
    ResponseMode responseMode() const { return responseMode_; }
    /// Absent if the URL has no state, a state without "=", or one that does not decode to UTF-8. "state=" is
    /// an empty state.
    const std::optional<std::string>& state() const { return state_; }
    /// As it was given.
    const std::string& relayNonce() const { return relayNonce_; }

    /// Returns true if `url` has the redirect URI's scheme, host, effective port and path; an empty path
    /// equals "/". Ignores query, fragment and credentials. A host or path that does not decode to UTF-8, and
    /// a port too large for an integer, match nothing.
    bool matchesRedirect(const Platform::URL& url) const;

    /// Whether `value` is there, is a string and is this request's nonce. Null is no value.
    bool matchesNonce(const Platform::JSONValue* value) const;

    /// This request's redirect URI, state and nonce.
    RelayTarget relayTarget() const;

    /// The authorize URL for the relay: the first "response_mode" turned into "form_post" (or that appended),
    /// and the relay target as its fragment. Everything else is kept as it was encoded.
    Platform::URL safariRelayURL() const;

    /// The port that `url` reaches: its own, else 443 for "https" and 80 for "http", else none.
    static std::optional<std::int64_t> effectivePort(const Platform::URL& url);

private:
    Platform::URL url_;
    Platform::URL redirectURI_;
    ResponseMode responseMode_ = ResponseMode::query;
    std::optional<std::string> state_;
    std::string relayNonce_;
};

} // namespace KeyloftCore
