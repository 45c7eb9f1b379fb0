#pragma once

#include "Platform/Foundation/InputStream.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// The cause of a navigation. The values are those of WKNavigationType.
enum class NavigationType {
    other = -1, ///< By the program, a script or the source of a frame.
    linkActivated = 0,
    formSubmitted = 1,
    backForward = 2,
    reload = 3,
    formResubmitted = 4,
};

/// A navigation in any frame of a page. A plain value, so that tests can construct it.
struct NavigationAction {
    /// Absent if WebKit's text is not a valid URL.
    std::optional<URL> url;
    /// Absent for schemes that have no methods.
    std::optional<std::string> method;
    /// The complete body of the request. WebKitGTK provides neither the body nor a stream.
    std::optional<std::string> body;
    /// The body as an unopened stream. Null if WebKit does not provide one.
    std::shared_ptr<InputStream> bodyStream;
    NavigationType navigationType = NavigationType::other;
};

/// The frame whose script opens a panel. A plain value.
struct FrameInfo {
    /// The URL of the frame's request. WebKitGTK does not identify frames, so there it is the URL of the
    /// page.
    std::optional<URL> url;
};

} // namespace Platform
