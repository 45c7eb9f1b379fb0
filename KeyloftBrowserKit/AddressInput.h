#pragma once

#include "Platform/Foundation/URL.h"

#include <optional>
#include <string_view>

namespace KeyloftBrowserKit {

/// Turns text that the user typed into a URL to load: the text itself if it is a URL, a host name with a
/// scheme added, or a search. Text is UTF-8. Stateless; safe on any thread.
class AddressInput {
public:
    AddressInput() = delete;

    /// The URL of the search engine, without a query.
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
    /// Returns true if `text` looks like a host name, possibly with port and path, and not like words to
    /// search for.
    static bool looksLikeHost(std::string_view text);
};

} // namespace KeyloftBrowserKit
