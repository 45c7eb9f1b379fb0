#include "KeyloftCore/RelayTarget.h"

#include "KeyloftCore/AuthorizeRequest.h"
#include "Platform/Foundation/Base64.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/JSON.h"
#include "Platform/Foundation/RandomBytes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace KeyloftCore {

namespace {

constexpr std::size_t nonceBytes = 16;

std::string urlSafeBase64(std::string_view bytes) {
    auto text = Platform::base64Encoded(bytes);
    std::ranges::replace(text, '+', '-');
    std::ranges::replace(text, '/', '_');
    std::erase(text, '=');
    return text;
}

/// Decodes URL-safe base64. Also accepts the standard alphabet and padding.
std::optional<std::string> decodedURLSafeBase64(std::string_view encoded) {
    std::string text(encoded);
    std::ranges::replace(text, '-', '+');
    std::ranges::replace(text, '_', '/');
    text.append((4 - text.size() % 4) % 4, '=');
    return Platform::base64Decoded(text);
}

bool isNonceCharacter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '-' || character == '_';
}

bool isAcceptableRedirect(const Platform::URL& url) {
    const auto host = url.host();
    return url.scheme() == "https" && host && host != AuthorizeRequest::authorizationHost &&
           !url.percentEncodedUser();
}

} // namespace

std::string RelayTarget::fragment() const {
    Platform::JSONValue::Object object{{"n", nonce}, {"r", redirectURI.absoluteString()}};
    if (state) {
        object.emplace("s", *state);
    }
    const auto json = Platform::compactJSON(std::move(object), Platform::JSONSlashes::plain);
    return std::string(fragmentKey) + "=" + urlSafeBase64(json);
}

std::optional<RelayTarget> RelayTarget::fromFragment(std::string_view fragment) {
    if (!fragment.starts_with(fragmentKey) || !fragment.substr(fragmentKey.size()).starts_with('=')) {
        return std::nullopt;
    }
    const auto bytes = decodedURLSafeBase64(fragment.substr(fragmentKey.size() + 1));
    const auto json = bytes ? Platform::JSONValue::parse(*bytes) : std::nullopt;
    if (!json || json->object() == nullptr) {
        return std::nullopt;
    }
    const auto* redirect = json->stringMember("r");
    auto redirectURI = redirect != nullptr ? Platform::URL::fromString(*redirect) : std::nullopt;
    if (!redirectURI || !isAcceptableRedirect(*redirectURI)) {
        return std::nullopt;
    }
    const auto* nonce = json->stringMember("n");
    if (nonce == nullptr || !isNonce(*nonce)) {
        return std::nullopt;
    }
    RelayTarget target{.redirectURI = *std::move(redirectURI), .state = std::nullopt, .nonce = *nonce};
    if (const auto* member = json->member("s")) {
        const auto* state = member->string();
        if (state == nullptr || Platform::characterCount(*state) > maxStateLength) {
            return std::nullopt;
        }
        target.state = *state;
    }
    return target;
}

std::string RelayTarget::mintNonce() {
    std::array<std::byte, nonceBytes> bytes = {};
    if (!Platform::RandomBytes::fill(bytes)) {
        Platform::fatalError("the system's random source failed");
    }
    return urlSafeBase64({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

bool RelayTarget::isNonce(std::string_view text) {
    return text.size() == nonceLength && std::ranges::all_of(text, isNonceCharacter);
}

} // namespace KeyloftCore
