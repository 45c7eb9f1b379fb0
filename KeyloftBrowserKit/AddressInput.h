#pragma once

#include "Platform/Foundation/URL.h"

#include <optional>
#include <string_view>

namespace KeyloftBrowserKit {

/// Turns what a person typed into what to load: an address as it is, a host name with a scheme added, or a
/// search. Texts are UTF-8. Stateless; safe on any thread.
class AddressInput {
public:
    AddressInput() = delete;

    /// The root of the search engine.
    static const Platform::URL& searchBase();

    /// The URL to load for `text`; none only for blank text.
    static std::optional<Platform::URL> resolve(std::string_view text);

    /// The search for `text`, whatever it looks like; none for blank text.
    static std::optional<Platform::URL> search(std::string_view text);

private:
    /// Whether the part before any ":" is "localhost" or an IPv4 address in four decimal numbers.
    static bool isLocal(std::string_view text);
    /// Whether `text` is a host name, perhaps with port and path, rather than words to search for.
    static bool looksLikeHost(std::string_view text);
};

} // namespace KeyloftBrowserKit
