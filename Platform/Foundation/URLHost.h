#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Parsing rules for hosts. A host is an IP literal, a domain name or, in some schemes, another kind of name.
/// Shared by URL, URLComponents and URLEncoding; do not include this header elsewhere.
namespace Platform::URLEncoding {

/// Returns true if `host` begins with "[", as every IP literal does.
bool isIPLiteral(std::string_view host);
/// Returns true if `host` does not need to be encoded in a URL.
bool isValidHost(std::string_view host);
/// Returns `host` unchanged if it is valid in a URL, otherwise its ASCII form or, if hosts of `scheme` are
/// not domain names, its percent-encoded form. Returns nothing if `host` cannot be converted.
std::optional<std::string> encodedHost(std::string_view host, std::optional<std::string_view> scheme);
/// Percent-decodes `host` if it contains "%", otherwise converts it to Unicode. Returns nothing on failure.
std::optional<std::string> decodedHost(std::string_view host);

} // namespace Platform::URLEncoding
