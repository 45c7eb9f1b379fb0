#pragma once

#include "Platform/Foundation/URL.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// The destination of an authorization's result, and the nonce that proves that the result belongs to the
/// request. Carried in the fragment of the relay URL. A plain value.
struct RelayTarget {
    /// The name before "=" and the encoded target.
    static constexpr std::string_view fragmentKey = "keyloft";
    /// The length of a nonce in characters: 128 random bits in URL-safe base64.
    static constexpr std::size_t nonceLength = 22;
    /// The longest state that `fromFragment` accepts, in characters.
    static constexpr std::size_t maxStateLength = 2048;

    /// The values of the request. An empty state differs from an absent one.
    Platform::URL redirectURI;
    std::optional<std::string> state;
    std::string nonce;

    /// The text of the fragment, without "#". Does not check the values: `fromFragment` may refuse the text.
    std::string fragment() const;

    /// Parses the text of a fragment, or returns nothing if it is malformed. The redirect URI must be https,
    /// on a host that is not the provider's, and without user information. The nonce must satisfy `isNonce`.
    /// A state must be a string within the limit.
    static std::optional<RelayTarget> fromFragment(std::string_view fragment);

    /// Returns a new nonce from the system's secure random source. Aborts if the source fails.
    static std::string mintNonce();

    /// Returns true if `text` has the form of a nonce: 22 of the characters A-Z, a-z, 0-9, "-" and "_".
    static bool isNonce(std::string_view text);

    friend bool operator==(const RelayTarget&, const RelayTarget&) = default;
};

} // namespace KeyloftCore
