#pragma once

#include "Platform/Foundation/InputStream.h"
#include "Platform/Foundation/URL.h"

#include <memory>
#include <optional>
#include <string>

namespace Platform {

/// The cause of a navigation. The values match those of WKNavigationType.
enum class NavigationType {
    other = -1, ///< Initiated by the application, by a script, or by loading the source of a frame.
    linkActivated = 0,
    formSubmitted = 1,
    backForward = 2,
    reload = 3,
    formResubmitted = 4,
};

/// A navigation in any frame of a page. A plain value type, so that tests can construct it.
struct NavigationAction {
    /// The URL. Absent if the string that WebKit provides is not a valid URL.
    std::optional<URL> url;
    /// The HTTP method. Absent for schemes that do not use methods.
    std::optional<std::string> method;
    /// The complete request body. WebKitGTK provides neither the body nor a stream.
    std::optional<std::string> body;
    /// The request body as a stream that has not been opened. Null if WebKit does not provide a stream.
    std::shared_ptr<InputStream> bodyStream;
    NavigationType navigationType = NavigationType::other;
};

/// The frame whose script opens a panel. A plain value type.
struct FrameInfo {
    /// The URL of the frame's request. On Linux, the page's URL, as WebKitGTK does not identify the frame.
    std::optional<URL> url;
};

} // namespace Platform
