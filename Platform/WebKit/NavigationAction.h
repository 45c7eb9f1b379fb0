#pragma once

#include "Platform/Foundation/URL.h"

#include <optional>
#include <string>

namespace Platform {

/// A navigation that a page wants. A value: tests make it by hand.
struct NavigationAction {
    /// None when the engine's text is no URL.
    std::optional<URL> url;
    /// "GET" for schemes that know no method.
    std::string method = "GET";
};

/// The frame that a script panel comes from. A value.
struct FrameInfo {
    /// The frame's request; Linux's engine does not tell frames apart and gives the page's own.
    std::optional<URL> url;
};

} // namespace Platform
