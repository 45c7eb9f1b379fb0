#pragma once

#include "Platform/Foundation/Error.h"

#include <glib.h>

#include <optional>
#include <string>

namespace Platform {

/// What the engine says of a failed load, in the domains and codes of Foundation and WebKit. What has no
/// counterpart there keeps its own domain and code. Nothing where the load did not fail: the engine hands a
/// page that is a sound or a film over to its player with an "error".
std::optional<Error> loadError(const GError& error, const char* failingURI);

/// What the engine has no error for.
Error timedOutError(const std::optional<std::string>& failingURL);
Error restrictedPortError(const std::optional<std::string>& failingURL);

} // namespace Platform
