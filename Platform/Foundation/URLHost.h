#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The rules for hosts, which are IP literals, domain names or, in some schemes, names of another kind.
/// Shared by URL, URLComponents and URLEncoding; do not include it elsewhere.
namespace Platform::URLEncoding {

/// Returns true if `host` begins as an IP literal does.
bool isIPLiteral(std::string_view host);
/// Returns true if `host` needs no encoding in a URL.
bool isValidHost(std::string_view host);
/// Returns `host` unchanged if it is valid in a URL, otherwise its ASCII form or, if hosts of `scheme` are
/// not domain names, its percent-encoded form. Returns nothing if `host` cannot be converted.
std::optional<std::string> encodedHost(std::string_view host, std::optional<std::string_view> scheme);
/// Returns a URL's host percent-decoded if it contains "%", otherwise in Unicode. Returns nothing if it
/// cannot be decoded.
std::optional<std::string> decodedHost(std::string_view host);

} // namespace Platform::URLEncoding
