#include "Platform/AppKit/StartArguments.h"

#include <utility>

namespace Platform {

std::vector<URL> urlsOf(std::span<char* const> arguments) {
    std::vector<URL> urls;
    for (const char* argument : arguments) {
        if (auto url = URL::fromString(argument); url && url->scheme()) {
            urls.push_back(std::move(*url));
        }
    }
    return urls;
}

} // namespace Platform
