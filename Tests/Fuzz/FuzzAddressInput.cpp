#include "KeyloftBrowserKit/AddressInput.h"
#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/FatalError.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

void require(bool condition, std::string_view promise) {
    if (!condition) {
        Platform::fatalError(promise);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using KeyloftBrowserKit::AddressInput;

    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool isBlank = Platform::trimmingWhitespaceAndNewlines(text).empty();

    const auto search = AddressInput::search(text);
    require(search.has_value() != isBlank, "a search is absent for blank text alone");
    if (search) {
        const std::string_view url = search->absoluteString();
        require(url.starts_with("https://duckduckgo.com/?q="), "a search uses the search engine");
        require(search->host() == "duckduckgo.com" && search->path() == "/",
                "a search stays on the search engine");
        require(url.substr(26).find_first_of("+?&=#") == std::string_view::npos,
                "a search is one query item");
    }

    const auto resolved = AddressInput::resolve(text);
    require(resolved.has_value() != isBlank, "an address is absent for blank text alone");
    if (resolved) {
        // Do not require a decoded host, because "a.b%FF" is accepted as a host but does not decode to valid
        // UTF-8.
        require(resolved->scheme().has_value() && resolved->percentEncodedHost().has_value(),
                "an address has scheme and host");
        for (const char character : resolved->absoluteString()) {
            require(character > ' ' && character < '\x7f', "an address is printable ASCII");
        }
    }
    return 0;
}
