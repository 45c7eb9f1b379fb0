#pragma once

namespace Platform {

/// Whether `uri` is an http or https URL of a port that belongs to another protocol and that web pages may
/// therefore not speak to. The engine would show an empty page in its place instead of saying so.
bool usesRestrictedPort(const char* uri);

} // namespace Platform
