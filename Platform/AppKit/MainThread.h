#pragma once

namespace Platform {

/// Aborts the process with a message that names `operation`, unless called on the main thread.
///
/// AppKit and WebKit may be used on the main thread only. Entry points that access native state call this
/// function, so that a violation is reported immediately instead of corrupting the state of GTK or AppKit.
void assertMainThread(const char* operation);

} // namespace Platform
