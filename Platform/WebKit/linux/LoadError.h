#pragma once

#include "Platform/Foundation/Error.h"

#include <glib.h>

#include <optional>
#include <string>

namespace Platform {

/// Converts a WebKitGTK error to the domains and codes of Foundation and WebKit. An error without a
/// counterpart keeps its domain, code and text. Returns nothing if the load did not actually fail: WebKitGTK
/// also emits an error when its media player takes over the load of an audio or video file.
std::optional<Error> loadError(const GError& error, const char* failingURI);

/// Returns true if `uri` is an http or https URL with a port that the Fetch standard blocks. For such a URL,
/// WebKitGTK 2.50.6 shows an empty page instead of failing the load (not reported).
bool usesRestrictedPort(const char* uri);

/// Create errors for failures for which WebKitGTK does not define an error.
Error timedOutError(const std::optional<std::string>& failingURL);
Error restrictedPortError(const std::optional<std::string>& failingURL);

} // namespace Platform
