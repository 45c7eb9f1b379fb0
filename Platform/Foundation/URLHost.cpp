#include "Platform/Foundation/URLHost.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/URLEncoding.h"

#include <unicode/bytestream.h>
#include <unicode/idna.h>
#include <unicode/stringpiece.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace Platform::URLEncoding {

namespace {

bool isValidIPLiteral(std::string_view host) {
    const std::string_view inner = host.substr(1, host.size() - 2);
    const std::string_view address = inner.substr(0, inner.find('%'));
    const std::string_view zone = inner.substr(address.size());
    // In an IP literal, "%" can only introduce the zone, and must itself be percent-encoded.
    return isValid(address, Allowed::ipLiteral) &&
           (zone.empty() || (zone.starts_with("%25") && isValid(zone.substr(3), Allowed::host)));
}

/// Returns true for schemes whose hosts are percent-encoded names instead of domain names.
bool hasNoDomainNames(std::string_view scheme) {
    constexpr auto schemes = std::to_array<std::string_view>({
        "addressbook",
        "callto",
        "contact",
        "facetime",
        "facetime-audio",
        "facetime-audio-prompt",
        "facetime-prompt",
        "facetimephone",
        "http+unix",
        "https+unix",
        "imap",
        "phasset",
        "pop",
        "tel",
        "telprompt",
        "ws+unix",
        "wss+unix",
    });
    return std::ranges::find(schemes, asciiLowercased(scheme)) != schemes.end();
}

const icu::IDNA* idna() {
    static const std::unique_ptr<icu::IDNA> instance = [] {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<icu::IDNA> made(icu::IDNA::createUTS46Instance(
            UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ | UIDNA_NONTRANSITIONAL_TO_ASCII |
                UIDNA_NONTRANSITIONAL_TO_UNICODE,
            error));
        if (U_FAILURE(error)) {
            made.reset();
        }
        return made;
    }();
    return instance.get();
}

enum class Direction { toASCII, toUnicode };

/// Converts a domain name according to UTS #46. Returns nothing on failure.
std::optional<std::string> convertedName(std::string_view name, Direction direction) {
    // IDNA errors that are ignored when converting to Unicode. A resolver rejects such names anyway.
    constexpr std::uint32_t shown = UIDNA_ERROR_EMPTY_LABEL | UIDNA_ERROR_LEADING_HYPHEN |
                                    UIDNA_ERROR_TRAILING_HYPHEN | UIDNA_ERROR_HYPHEN_3_4;
    // Foundation's limit, in bytes, for the length of a name before and after the conversion.
    constexpr std::size_t longest = 2048;
    if (idna() == nullptr || name.size() > longest) {
        return std::nullopt;
    }
    std::string converted;
    icu::StringByteSink<std::string> sink(&converted);
    icu::IDNAInfo info;
    UErrorCode error = U_ZERO_ERROR;
    const icu::StringPiece piece(name.data(), static_cast<std::int32_t>(name.size()));
    if (direction == Direction::toASCII) {
        idna()->nameToASCII_UTF8(piece, sink, info, error);
    } else {
        idna()->nameToUnicodeUTF8(piece, sink, info, error);
    }
    const std::uint32_t tolerated = direction == Direction::toUnicode ? shown : 0;
    if (U_FAILURE(error) || (info.getErrors() & ~tolerated) != 0 || converted.empty() ||
        converted.size() > longest) {
        return std::nullopt;
    }
    return converted;
}

} // namespace

bool isIPLiteral(std::string_view host) { return host.starts_with('['); }

bool isValidHost(std::string_view host) {
    return isIPLiteral(host) ? host.ends_with(']') && isValidIPLiteral(host) : isValid(host, Allowed::host);
}

std::optional<std::string> encodedHost(std::string_view host, std::optional<std::string_view> scheme) {
    if (isValidHost(host)) {
        return std::string(host);
    }
    if (isIPLiteral(host)) {
        // Accept an unencoded "%" before the zone, and encode it.
        const std::string_view bare = host.substr(0, host.find('%'));
        std::string literal(host);
        if (bare.size() < host.size() && host.ends_with(']')) {
            const std::string_view zone = host.substr(bare.size() + 1, host.size() - bare.size() - 2);
            literal = std::string(bare) + "%25" + encoded(zone, Allowed::host) + "]";
        }
        return isValidHost(literal) ? std::optional(literal) : std::nullopt;
    }
    if (scheme && hasNoDomainNames(*scheme)) {
        return encoded(host, Allowed::host);
    }
    std::optional<std::string> converted = convertedName(host, Direction::toASCII);
    if (!converted || !isValid(*converted, Allowed::host)) {
        return std::nullopt;
    }
    return converted;
}

std::optional<std::string> decodedHost(std::string_view host) {
    if (host.empty() || host.contains('%')) {
        return decoded(host);
    }
    auto converted = convertedName(host, Direction::toUnicode);
    // The conversion folds case. If that is the only change, keep the host as written.
    if (converted == asciiLowercased(host)) {
        return std::string(host);
    }
    return converted;
}

} // namespace Platform::URLEncoding
