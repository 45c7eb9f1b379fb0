#pragma once

#include "Platform/Foundation/URL.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The destination of an authorization result, and the nonce that proves that the result belongs to the
/// request. Passed in the fragment of the relay URL. A plain value type.
struct RelayTarget {
    /// The name that precedes "=" and the encoded target in the fragment.
    static constexpr std::string_view fragmentKey = "keyloft";
    /// The length of a nonce, in characters. A nonce is 128 random bits encoded in URL-safe base64.
    static constexpr std::size_t nonceLength = 22;
    /// The maximum length of a state that `fromFragment` accepts, in characters.
    static constexpr std::size_t maxStateLength = 2048;

    /// The redirect URI, state and nonce of the authorization request. An empty `state` is distinct from an
    /// absent one.
    Platform::URL redirectURI;
    std::optional<std::string> state;
    std::string nonce;

    /// Returns the fragment that represents this target, without "#". Does not validate the members, so
    /// `fromFragment` may reject the result.
    std::string fragment() const;

    /// Parses a fragment. Returns nothing if it is malformed. The redirect URI must be an https URL without
    /// user information and with a host other than the authorization host. The nonce must satisfy `isNonce`.
    /// A state must be a string of at most `maxStateLength` characters.
    static std::optional<RelayTarget> fromFragment(std::string_view fragment);

    /// Returns a new nonce from the secure random number generator of the operating system. Aborts if the
    /// generator fails.
    static std::string mintNonce();

    /// Returns true if `text` has the format of a nonce: 22 characters from A-Z, a-z, 0-9, "-" and "_".
    static bool isNonce(std::string_view text);

    friend bool operator==(const RelayTarget&, const RelayTarget&) = default;
};

} // namespace KeyloftCore
