#pragma once

#include <webkit/webkit.h>

namespace Platform {

/// Connects fallback handlers that respond safely to every signal that no other handler has handled. They
/// refuse downloads, printing, permissions and full screen, prevent WebKitGTK from showing its own dialogs,
/// and prevent it from displaying an error page when a load fails. The handlers remain connected until the
/// widget is destroyed, which may happen after its owner is destroyed. Call this function after all other
/// handlers are connected, because only the first handler that handles a signal has an effect.
void giveSafeAnswers(WebKitWebView* view);

} // namespace Platform
