#pragma once

#include <gtk/gtk.h>

namespace Platform {

/// Removes minimising from what GTK and, under X11, the window manager offer for a top-level that is not
/// realized yet. Wayland has no request for this: a compositor that draws the frame itself offers what it
/// likes.
void withholdMinimizing(GtkWindow* toplevel);

} // namespace Platform
