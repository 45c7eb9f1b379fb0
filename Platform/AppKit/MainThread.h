#pragma once

namespace Platform {

/// Aborts the process with a message that names `operation`, unless called on the main thread. Entry points
/// of AppKit and WebKit call it, so that a violation is reported instead of corrupting GTK.
void assertMainThread(const char* operation);

} // namespace Platform
