#include "KeyloftBrowserKit/AddressInput.h"

#include "KeyloftBrowserKit/BuiltInURL.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/URLComponents.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace KeyloftBrowserKit {

namespace {

std::string_view before(std::string_view text, char separator) {
    return text.substr(0, text.find(separator));
}

/// Returns true if `text` is a decimal number from 0 to 255. A sign and leading zeros are allowed.
bool isDecimalByte(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    int value = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') {
            return false;
        }
        value = (10 * value) + (digit - '0');
        if (value > (negative ? 0 : 255)) {
            return false;
        }
    }
    return !text.empty();
}

/// Escapes "+" and "?", which `URLComponents` does not escape in a query. The search engine would decode "+"
/// as a space.
std::string escapingPlusAndQuestionMark(std::string_view query) {
    std::string escaped;
    escaped.reserve(query.size());
    for (const char character : query) {
        if (character == '+') {
            escaped += "%2B";
        } else if (character == '?') {
            escaped += "%3F";
        } else {
            escaped += character;
        }
    }
    return escaped;
}

} // namespace

const Platform::URL& AddressInput::searchBase() {
    static const Platform::URL base = builtInURL("https://duckduckgo.com/");
    return base;
}

std::optional<Platform::URL> AddressInput::resolve(std::string_view text) {
    const std::string_view trimmed = Platform::trimmingWhitespaceAndNewlines(text);
    if (trimmed.empty()) {
        return std::nullopt;
    }
    if (auto url = Platform::URL::fromString(trimmed); url && url->scheme() && url->host()) {
        return url;
    }
    if (!looksLikeHost(trimmed)) {
        return search(trimmed);
    }
    // Intentionally test the whole input, not only its host: "localhost/app" becomes an https URL,
    // "localhost:80/app" an http URL.
    std::string address = isLocal(trimmed) ? "http://" : "https://";
    address += trimmed;
    if (auto url = Platform::URL::fromString(address)) {
        return url;
    }
    return search(trimmed);
}

std::optional<Platform::URL> AddressInput::search(std::string_view text) {
    const std::string_view trimmed = Platform::trimmingWhitespaceAndNewlines(text);
    if (trimmed.empty()) {
        return std::nullopt;
    }
    Platform::URLComponents components(searchBase());
    components.setQueryItems({Platform::URLQueryItem{.name = "q", .value = std::string(trimmed)}});
    components.setPercentEncodedQuery(
        escapingPlusAndQuestionMark(components.percentEncodedQuery().value_or("")));
    return components.url();
}

bool AddressInput::isLocal(std::string_view text) {
    std::string_view host = before(text, ':');
    if (host == "localhost") {
        return true;
    }
    int pieces = 0;
    while (!host.empty()) {
        const std::string_view piece = before(host, '.');
        host.remove_prefix(std::min(piece.size() + 1, host.size()));
        if (piece.empty()) {
            continue;
        }
        ++pieces;
        if (pieces > 4 || !isDecimalByte(piece)) {
            return false;
        }
    }
    return pieces == 4;
}

bool AddressInput::looksLikeHost(std::string_view text) {
    if (text.find(' ') != std::string_view::npos) {
        return false;
    }
    const std::string_view authority = before(text, '/');
    if (isLocal(authority)) {
        return true;
    }
    const std::string_view host = before(authority, ':');
    if (host.find('.') == std::string_view::npos) {
        return false;
    }
    std::size_t offset = 0;
    while (offset < host.size()) {
        const char32_t codePoint = Platform::nextCodePoint(host, offset);
        if (codePoint != U'-' && codePoint != U'.' && !Platform::isAlphanumeric(codePoint)) {
            return false;
        }
    }
    return !host.ends_with('.');
}

} // namespace KeyloftBrowserKit
