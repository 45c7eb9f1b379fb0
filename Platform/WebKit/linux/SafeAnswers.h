#pragma once

#include <webkit/webkit.h>

namespace Platform {

/// Connects handlers that give a safe answer to every signal that no other handler answers: nothing is saved,
/// printed, permitted or shown full screen, WebKitGTK shows no dialog of its own, and a failed load draws no
/// page. The handlers remain connected until the widget is destroyed, which may be after its owner. Call this
/// after connecting all other handlers, because the first answer counts.
void giveSafeAnswers(WebKitWebView* view);

} // namespace Platform
