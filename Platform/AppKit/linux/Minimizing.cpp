#include "Platform/AppKit/linux/Minimizing.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>

// Include gdkx.h last, because Xlib defines macros with common names.
// clang-format off
#include <gdk/x11/gdkx.h>
// clang-format on

namespace Platform {

namespace {

constexpr std::string_view minimizeButton = "minimize";

/// Returns the user's title bar layout without the minimize button.
std::string buttonLayout(GtkWidget* toplevel) {
    char* setting = nullptr;
    g_object_get(gtk_widget_get_settings(toplevel), "gtk-decoration-layout", &setting, nullptr);
    const std::unique_ptr<char, decltype(&g_free)> owned(setting, &g_free);
    std::string layout = setting ? setting : "";
    if (const auto button = layout.find(minimizeButton); button != std::string::npos) {
        layout.erase(button, minimizeButton.size());
    }
    return layout;
}

/// Sets _MOTIF_WM_HINTS so that the frame does not offer minimizing. If `isResizable` is false, the frame
/// does not offer resizing or maximizing either.
void setFrameHints(GdkSurface* surface, bool isResizable) {
    enum : unsigned long { hasFunctions = 1, hasDecorations = 2 };
    enum : unsigned long { resize = 2, move = 4, maximize = 16, close = 32 };
    enum : unsigned long { border = 2, resizeHandles = 4, title = 8, menu = 16, maximizeButton = 64 };
    // The fields are flags, functions, decorations, input mode and status. Xlib passes 32-bit values as long.
    std::array<unsigned long, 5> hints = {hasFunctions | hasDecorations, move | close, border | title | menu,
                                          0, 0};
    if (isResizable) {
        hints[1] |= resize | maximize;
        hints[2] |= resizeHandles | maximizeButton;
    }
    GdkDisplay* display = gdk_surface_get_display(surface);
    const Atom property = gdk_x11_get_xatom_by_name_for_display(display, "_MOTIF_WM_HINTS");
    XChangeProperty(gdk_x11_display_get_xdisplay(display), gdk_x11_surface_get_xid(surface), property,
                    property, 32, PropModeReplace, reinterpret_cast<const unsigned char*>(hints.data()),
                    hints.size());
}

void realized(GtkWidget* toplevel, gpointer /*data*/) {
    // If GTK draws the frame, the window now has a header bar. No GTK function returns it, so search for it.
    for (GtkWidget* child = gtk_widget_get_first_child(toplevel); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_HEADER_BAR(child)) {
            gtk_header_bar_set_decoration_layout(GTK_HEADER_BAR(child), buttonLayout(toplevel).c_str());
        }
    }
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(toplevel));
    if (GDK_IS_X11_SURFACE(surface) && gtk_window_get_decorated(GTK_WINDOW(toplevel))) {
        setFrameHints(surface, gtk_window_get_resizable(GTK_WINDOW(toplevel)) == TRUE);
    }
}

} // namespace

void withholdMinimizing(GtkWindow* toplevel) {
    gtk_widget_action_set_enabled(GTK_WIDGET(toplevel), "window.minimize", FALSE);
    g_signal_connect(toplevel, "realize", G_CALLBACK(realized), nullptr);
}

} // namespace Platform
