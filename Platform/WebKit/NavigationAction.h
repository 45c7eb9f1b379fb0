#pragma once

#include "Platform/Foundation/InputStream.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// What made a page navigate. The numbers are those of WebKit's interface.
enum class NavigationType {
    other = -1, ///< by the program, by script, or by a frame's source
    linkActivated = 0,
    formSubmitted = 1,
    backForward = 2,
    reload = 3,
    formResubmitted = 4,
};

/// A navigation that a page wants, in whichever of its frames. A value: tests make it by hand.
struct NavigationAction {
    /// None when the engine's text is no URL.
    std::optional<URL> url;
    /// None for schemes that know no method.
    std::optional<std::string> method;
    /// The request's body, whole. Linux's engine hands out none, nor a stream.
    std::optional<std::string> body;
    /// The same where the engine has it as a stream, not opened yet.
    std::shared_ptr<InputStream> bodyStream;
    NavigationType navigationType = NavigationType::other;
};

/// The frame that a script panel comes from. A value.
struct FrameInfo {
    /// The frame's request; Linux's engine does not tell frames apart and gives the page's own.
    std::optional<URL> url;
};

} // namespace Platform
