#include "KeyloftBrowserKit/BuiltInURL.h"

#include "Platform/Foundation/FatalError.h"

#include <string>
#include <utility>

namespace KeyloftBrowserKit {

Platform::URL builtInURL(std::string_view text) {
    auto url = Platform::URL::fromString(text);
    if (!url) {
        Platform::fatalError("a built-in URL does not parse: " + std::string(text));
    }
    return *std::move(url);
}

} // namespace KeyloftBrowserKit
