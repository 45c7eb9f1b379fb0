#pragma once

namespace Platform {

/// Returns true if `uri` is an http or https URL with a port that is reserved for another protocol and
/// blocked for web pages. WebKitGTK 2.50.6 shows an empty page instead of reporting a failure (not reported).
bool usesRestrictedPort(const char* uri);

} // namespace Platform
