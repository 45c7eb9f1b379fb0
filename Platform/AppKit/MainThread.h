#pragma once

namespace Platform {

/// Aborts the process with a message that names `operation`, unless called on the main thread.
///
/// Everything in AppKit and WebKit belongs to the main thread. Entry points that touch native state call this
/// function, so that a mistake is reported at its cause and not as corrupted state of GTK or AppKit later.
void assertMainThread(const char* operation);

} // namespace Platform
