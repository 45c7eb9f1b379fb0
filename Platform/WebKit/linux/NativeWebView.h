#pragma once

#include "Platform/AppKit/Action.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/Foundation/URL.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

#include <optional>
#include <string>

namespace Platform {

/// Creates a WebKitGTK view with the configuration's data store and scripts, and takes the opener from the
/// configuration.
GObjectPtr<WebKitWebView> makeNativeWebView(WebViewConfiguration& configuration);

/// Return nothing for an empty text.
std::optional<std::string> uriOf(WebKitWebView* view);
std::optional<std::string> titleOf(WebKitWebView* view);

/// The text of `url` as WebKitGTK writes it.
std::string engineText(const URL& url);

/// Performs an editing action in the page.
void executeEditing(WebKitWebView* view, Action action);

} // namespace Platform
