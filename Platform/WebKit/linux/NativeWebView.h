#pragma once

#include "Platform/AppKit/Action.h"
#include "Platform/AppKit/linux/GObjectPtr.h"
#include "Platform/Foundation/URL.h"
#include "Platform/WebKit/WebViewConfiguration.h"

#include <webkit/webkit.h>

#include <optional>
#include <string>

namespace Platform {

/// A view of WebKitGTK's with the configuration's data store and scripts. Takes the opener out of it.
GObjectPtr<WebKitWebView> makeNativeWebView(WebViewConfiguration& configuration);

/// Nothing where the engine has no text.
std::optional<std::string> uriOf(WebKitWebView* view);
std::optional<std::string> titleOf(WebKitWebView* view);

/// `url` as the engine will write it.
std::string engineText(const URL& url);

/// Does in the page what an editing action asks for.
void executeEditing(WebKitWebView* view, Action action);

} // namespace Platform
