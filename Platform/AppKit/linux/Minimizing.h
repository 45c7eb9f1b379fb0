#pragma once

#include <gtk/gtk.h>

namespace Platform {

/// Removes the minimize operation that GTK and, on X11, the window manager offer for a top-level window. Call
/// it before the window is realized. Wayland has no equivalent request, so a compositor that draws the frame
/// may still offer the operation.
void withholdMinimizing(GtkWindow* toplevel);

} // namespace Platform
