#pragma once

namespace Platform {

/// Stops the process with a message unless called on the main thread.
///
/// Everything in AppKit and WebKit belongs to the main thread; each entry point that touches native state
/// says so by this call, so that a mistake shows at its cause and not as a corrupted toolkit later.
void assertMainThread(const char* operation);

} // namespace Platform
