#pragma once

namespace Platform {

/// Returns true if `uri` is an http or https URL whose port is reserved for another protocol and therefore
/// blocked for web pages. WebKitGTK 2.50.6 shows an empty page for a blocked port instead of reporting a
/// failure (not reported).
bool usesRestrictedPort(const char* uri);

} // namespace Platform
