#pragma once

#include "Platform/Foundation/URL.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace KeyloftCore {

/// Where an authorization's result must go, and what proves that it belongs to the request. It travels in the
/// relay URL's fragment. A plain value.
struct RelayTarget {
    /// The name in front of the encoded target.
    static constexpr std::string_view fragmentKey = "keyloft";
    /// Of a nonce, in characters: 128 random bits in URL-safe base64.
    static constexpr std::size_t nonceLength = 22;
    /// The longest state that a fragment is read with, in characters.
    static constexpr std::size_t maxStateLength = 2048;

    /// The request's; an empty state is not the same as none.
    Platform::URL redirectURI;
    std::optional<std::string> state;
    std::string nonce;

    /// The fragment's text, without "#". Nothing is checked: what breaks the reader's rules is written all
    /// the same.
    std::string fragment() const;

    /// The target of a fragment's text, or nothing if anything is wrong with it: the redirect URI must be
    /// https, on a host that is not the provider's and without user information; the nonce must have a
    /// nonce's form; a state must be a string within the limit.
    static std::optional<RelayTarget> fromFragment(std::string_view fragment);

    /// A fresh nonce from the system's secure random source. Stops the process if that fails.
    static std::string mintNonce();

    /// Whether `text` has a nonce's form: 22 of the characters A-Z, a-z, 0-9, "-" and "_".
    static bool isNonce(std::string_view text);

    friend bool operator==(const RelayTarget&, const RelayTarget&) = default;
};

} // namespace KeyloftCore
