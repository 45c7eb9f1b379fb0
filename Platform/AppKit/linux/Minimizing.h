#pragma once

#include <gtk/gtk.h>

namespace Platform {

/// Removes the minimize operation that GTK and, on X11, the window manager offer for a top-level window. Call
/// it before the window is realized. A Wayland compositor that draws the frame may still offer it.
void withholdMinimizing(GtkWindow* toplevel);

} // namespace Platform
