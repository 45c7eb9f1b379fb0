#pragma once

#include <webkit/webkit.h>

namespace Platform {

/// Gives the page the safe answer to whatever nobody else answers: nothing is saved, printed, permitted or
/// shown full screen, no dialog of the engine's own appears, and a failed load draws no page. The answers
/// stay with the widget to its end, which may come after its owner's. To be called when everybody else's
/// handlers are connected.
void giveSafeAnswers(WebKitWebView* view);

} // namespace Platform
