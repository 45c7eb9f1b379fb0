#include "KeyloftCore/RelayTarget.h"
#include "Platform/Foundation/Base64.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/FatalError.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using KeyloftCore::RelayTarget;

void require(bool condition, std::string_view promise) {
    if (!condition) {
        Platform::fatalError(promise);
    }
}

void check(std::string_view fragment) {
    const auto target = RelayTarget::fromFragment(fragment);
    if (!target) {
        return;
    }
    require(fragment.starts_with("keyloft="), "a target has its key in front");
    require(target->redirectURI.scheme() == "https", "a target is https");
    const auto host = target->redirectURI.host();
    require(host && host != "appleid.apple.com", "a target has a host, not the provider's");
    require(!target->redirectURI.percentEncodedUser(), "a target has no user information");
    require(RelayTarget::isNonce(target->nonce), "a target has a nonce");
    require(!target->state || Platform::characterCount(*target->state) <= RelayTarget::maxStateLength,
            "a target's state has its limit");
    require(RelayTarget::fromFragment(target->fragment()) == target, "a target is read as it is written");
}

} // namespace

/// Checks the input as a fragment, and again as JSON that is base64-encoded in a fragment. Mutations of a
/// fragment would rarely produce valid base64 of valid JSON.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    check(text);
    check("keyloft=" + Platform::base64Encoded(text));
    return 0;
}
