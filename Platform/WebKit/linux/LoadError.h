#pragma once

#include "Platform/Foundation/Error.h"

#include <glib.h>

#include <optional>

namespace Platform {

/// The domain of the engine's own errors, with the codes that are the same on every system.
inline constexpr const char* webKitErrorDomain = "WebKitErrorDomain";
inline constexpr int webKitErrorRestrictedPort = 103;

/// What the engine says of a failed load, in the domains and codes of Foundation and WebKit. What has no
/// counterpart there keeps its own domain and code. Nothing where the load did not fail: the engine hands a
/// page that is a sound or a film over to its player with an "error".
std::optional<Error> loadError(const GError& error, const char* failingURI);

} // namespace Platform
