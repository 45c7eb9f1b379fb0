#pragma once

namespace Platform {

/// Aborts the process with a message that names `operation`, unless called on the main thread. Entry points
/// of AppKit and WebKit call this function, because a call on another thread could corrupt the state of GTK.
void assertMainThread(const char* operation);

} // namespace Platform
