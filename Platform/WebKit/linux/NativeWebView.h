#pragma once

#include "Platform/AppKit/Action.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/Foundation/URL.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

#include <optional>
#include <string>

namespace Platform {

/// Creates a WebKitGTK view with the data store and scripts of the configuration. If the configuration has an
/// opener, the new view is related to it and the opener is cleared.
GObjectPtr<WebKitWebView> makeNativeWebView(WebViewConfiguration& configuration);

/// Return the URI or title of a view, or nothing if it is empty.
std::optional<std::string> uriOf(WebKitWebView* view);
std::optional<std::string> titleOf(WebKitWebView* view);

/// Serializes `url` as WebKitGTK does.
std::string engineText(const URL& url);

void executeEditing(WebKitWebView* view, Action action);

} // namespace Platform
