#pragma once

#include <gtk/gtk.h>

namespace Platform {

/// Removes minimising from what GTK and, on X11, the window manager offer for a top-level. Call it before the
/// top-level is realized. Wayland has no such request: a compositor that draws the frame may still offer it.
void withholdMinimizing(GtkWindow* toplevel);

} // namespace Platform
