#include "Platform/Foundation/URLEncoding.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/URLHost.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace Platform::URLEncoding {

namespace {

constexpr std::string_view unreservedMarks = "-._~";
constexpr std::string_view subDelimiters = "!$&'()*+,;=";

constexpr bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}
constexpr bool isDigit(char character) { return character >= '0' && character <= '9'; }

/// Bits for sets of delimiters, stored in the same table as the bits of `Allowed`.
enum class Delimiter : std::uint16_t {
    general = 1U << 8U,   ///< Characters that terminate a scheme, or show that there is no scheme.
    authority = 1U << 9U, ///< Characters that terminate an authority.
    path = 1U << 10U,     ///< Characters that terminate a path.
};

using Table = std::array<std::uint16_t, 256>;

constexpr Table makeTable() {
    Table table{};
    const auto allow = [&table](std::string_view characters, auto... places) {
        for (const char character : characters) {
            auto& entry = table[static_cast<unsigned char>(character)];
            entry = static_cast<std::uint16_t>(entry | (static_cast<unsigned int>(places) | ...));
        }
    };
    const auto allowEverywhere = [&](std::string_view characters) {
        allow(characters, Allowed::user, Allowed::host, Allowed::pathFirstSegment, Allowed::path,
              Allowed::query, Allowed::queryItem, Allowed::ipLiteral);
    };
    for (int code = 0; code < 128; ++code) {
        const char character = static_cast<char>(code);
        if (isLetter(character) || isDigit(character)) {
            allowEverywhere({&character, 1});
            allow({&character, 1}, Allowed::scheme);
        }
    }
    allow("+-.", Allowed::scheme);
    allowEverywhere(unreservedMarks);
    allowEverywhere(subDelimiters);
    for (const char separator : {'&', '='}) {
        auto& entry = table[static_cast<unsigned char>(separator)];
        entry = static_cast<std::uint16_t>(entry & ~static_cast<unsigned int>(Allowed::queryItem));
    }
    allow("@", Allowed::pathFirstSegment);
    allow("@:/", Allowed::path, Allowed::query, Allowed::queryItem);
    allow("?", Allowed::query, Allowed::queryItem);
    allow(":", Allowed::ipLiteral);
    allow(":/?#[]@", Delimiter::general);
    allow("/?#", Delimiter::authority);
    allow("?#", Delimiter::path);
    return table;
}

constexpr Table table = makeTable();

template <typename Bit>
bool isIn(char character, Bit bit) {
    return (table[static_cast<unsigned char>(character)] & static_cast<unsigned int>(bit)) != 0;
}

/// Returns the length of the part of `text` before its first delimiter of the given kind.
std::size_t lengthUpTo(std::string_view text, Delimiter delimiter) {
    const auto ends = [delimiter](char character) { return isIn(character, delimiter); };
    return static_cast<std::size_t>(std::ranges::find_if(text, ends) - text.begin());
}

int hexValue(char character) {
    if (isDigit(character)) {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    return -1;
}

bool isEscapeAt(std::string_view text, std::size_t offset) {
    return offset + 2 < text.size() && text[offset] == '%' && hexValue(text[offset + 1]) >= 0 &&
           hexValue(text[offset + 2]) >= 0;
}

void appendEncoded(std::string& out, std::string_view text, Allowed allowed) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char character : text) {
        if (isIn(character, allowed)) {
            out += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            out += '%';
            out += digits[byte >> 4U];
            out += digits[byte & 0xFU];
        }
    }
}

std::string_view take(std::string_view& rest, std::size_t length) {
    const std::string_view taken = rest.substr(0, length);
    rest.remove_prefix(taken.size());
    return taken;
}

/// Splits an authority into user information, host and port. Returns false if the authority is invalid.
bool splitAuthority(std::string_view authority, Parts& parts) {
    // The last "@" terminates the user information. Any preceding "@" is encoded later.
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos) {
        std::string_view user = authority.substr(0, at);
        authority.remove_prefix(at + 1);
        if (const std::size_t colon = user.find(':'); colon != std::string_view::npos) {
            parts.password = user.substr(colon + 1);
            user = user.substr(0, colon);
        }
        parts.user = user;
    }
    std::size_t hostLength = 0;
    if (authority.starts_with('[')) {
        const std::size_t bracket = authority.find(']');
        if (bracket == std::string_view::npos) {
            return false;
        }
        hostLength = bracket + 1;
    } else {
        hostLength = std::min(authority.find(':'), authority.size());
    }
    parts.host = take(authority, hostLength);
    if (authority.empty()) {
        return true;
    }
    parts.port = authority.substr(1);
    return authority.front() == ':' && std::ranges::all_of(*parts.port, isDigit);
}

bool split(std::string_view text, bool allowEmptyScheme, Parts& parts) {
    const std::size_t schemeLength = lengthUpTo(text, Delimiter::general);
    if (schemeLength < text.size() && text[schemeLength] == ':' && (schemeLength > 0 || allowEmptyScheme)) {
        parts.scheme = take(text, schemeLength);
        text.remove_prefix(1);
        if (!parts.scheme->empty() && !isValidScheme(*parts.scheme)) {
            return false;
        }
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        if (!splitAuthority(take(text, lengthUpTo(text, Delimiter::authority)), parts)) {
            return false;
        }
    }
    parts.path = take(text, lengthUpTo(text, Delimiter::path));
    if (text.starts_with('?')) {
        text.remove_prefix(1);
        parts.query = take(text, text.find('#'));
    }
    if (text.starts_with('#')) {
        parts.fragment = text.substr(1);
    }
    return true;
}

std::optional<std::int64_t> portNumber(std::optional<std::string_view> digits) {
    std::int64_t number = 0;
    if (!digits || digits->empty() ||
        std::from_chars(digits->data(), digits->data() + digits->size(), number).ec != std::errc()) {
        return std::nullopt;
    }
    return number;
}

} // namespace

bool isValid(std::string_view text, Allowed allowed) {
    for (std::size_t offset = 0; offset < text.size(); ++offset) {
        if (!isIn(text[offset], allowed)) {
            if (!isEscapeAt(text, offset)) {
                return false;
            }
            offset += 2;
        }
    }
    return true;
}

bool isValidScheme(std::string_view scheme) {
    return !scheme.empty() && isLetter(scheme.front()) &&
           std::ranges::all_of(scheme, [](char character) { return isIn(character, Allowed::scheme); });
}

std::string encoded(std::string_view text, Allowed allowed) {
    std::string out;
    out.reserve(text.size() + text.size() / 2);
    appendEncoded(out, text, allowed);
    return out;
}

std::string encodedUnlessValid(std::string_view text, Allowed allowed) {
    return isValid(text, allowed) ? std::string(text) : encoded(text, allowed);
}

std::string encodedPath(std::string_view path) {
    const std::string_view firstSegment = path.substr(0, path.find('/'));
    std::string out;
    out.reserve(path.size() + path.size() / 2);
    appendEncoded(out, firstSegment, Allowed::pathFirstSegment);
    appendEncoded(out, path.substr(firstSegment.size()), Allowed::path);
    return out;
}

std::string decodedBytes(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size(); ++offset) {
        if (isEscapeAt(text, offset)) {
            out += static_cast<char>(hexValue(text[offset + 1]) * 16 + hexValue(text[offset + 2]));
            offset += 2;
        } else {
            out += text[offset];
        }
    }
    return out;
}

std::optional<std::string> decoded(std::string_view text) {
    if (!text.contains('%')) {
        return std::string(text);
    }
    std::string out = decodedBytes(text);
    if (!isValidUTF8(out)) {
        return std::nullopt;
    }
    return out;
}

bool parse(std::string_view text, bool allowEmptyScheme, Parsed& parsed) {
    parsed.text = text;
    Parts& parts = parsed.parts;
    if (!split(parsed.text, allowEmptyScheme, parts)) {
        return false;
    }
    parsed.port = portNumber(parts.port);
    const auto holds = [](std::optional<std::string_view> part, Allowed allowed) {
        return !part || isValid(*part, allowed);
    };
    if (holds(parts.user, Allowed::user) && holds(parts.password, Allowed::user) &&
        (!parts.host || isValidHost(*parts.host)) && isValid(parts.path, Allowed::path) &&
        holds(parts.query, Allowed::query) && holds(parts.fragment, Allowed::query)) {
        return true;
    }

    // All delimiters are ASCII, so repairing ill-formed UTF-8 does not affect them.
    const std::string source = repairingUTF8(text);
    Parts old;
    split(source, allowEmptyScheme, old);
    std::string out;
    out.reserve(source.size() + source.size() / 2);
    if (old.scheme) {
        out += *old.scheme;
        out += ':';
    }
    if (old.host) {
        out += "//";
        if (old.user) {
            out += encodedUnlessValid(*old.user, Allowed::user);
            if (old.password) {
                out += ':';
                out += encodedUnlessValid(*old.password, Allowed::user);
            }
            out += '@';
        }
        const auto host = encodedHost(*old.host, old.scheme);
        if (!host) {
            return false;
        }
        out += *host;
        // Write the port without leading zeros. Omit it if it is empty or does not fit in 64 bits.
        if (parsed.port) {
            out += ':';
            out += std::to_string(*parsed.port);
        }
    }
    out += isValid(old.path, Allowed::path) ? std::string(old.path) : encodedPath(old.path);
    if (old.query) {
        out += '?';
        out += encodedUnlessValid(*old.query, Allowed::query);
    }
    if (old.fragment) {
        out += '#';
        out += encodedUnlessValid(*old.fragment, Allowed::query);
    }
    parsed.text = std::move(out);
    parts = Parts();
    return split(parsed.text, allowEmptyScheme, parts);
}

} // namespace Platform::URLEncoding
