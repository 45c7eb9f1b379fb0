#pragma once

#include "Platform/Foundation/URL.h"

#include <optional>
#include <string_view>

namespace KeyloftBrowserKit {

/// Converts user input to a URL to load: the input itself if it is a URL, the input with a scheme prepended
/// if it looks like a host name, or else a search URL. Strings are UTF-8. Stateless and thread-safe.
class AddressInput {
public:
    AddressInput() = delete;

    /// The URL of the search engine, without a query string.
    static const Platform::URL& searchBase();

    /// Returns the URL to load for `text`. Returns nothing only if `text` is blank.
    static std::optional<Platform::URL> resolve(std::string_view text);

    /// Returns the URL that searches for `text`, even if `text` looks like an address. Returns nothing if
    /// `text` is blank.
    static std::optional<Platform::URL> search(std::string_view text);

private:
    /// Returns true if the part of `text` before the first ":" is "localhost" or an IPv4 address of four
    /// decimal numbers.
    static bool isLocal(std::string_view text);
    /// Returns true if `text` looks like a host name, optionally with a port and a path, rather than a search
    /// query.
    static bool looksLikeHost(std::string_view text);
};

} // namespace KeyloftBrowserKit
