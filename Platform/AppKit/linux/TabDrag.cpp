#include "Platform/AppKit/linux/TabDrag.h"

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <memory>

// Included last, because it defines macros with common names.
// clang-format off
#include <gdk/x11/gdkx.h>
// clang-format on

namespace Platform {

namespace {

/// Returns true if the pointer is not over any window except the drag icon, which ignores pointer events.
bool isOnBareDesktop(GdkDrag* drag) {
    GdkDisplay* display = gdk_drag_get_display(drag);
    if (!GDK_IS_X11_DISPLAY(display)) {
        return false;
    }
    Display* connection = gdk_x11_display_get_xdisplay(display);
    Window root = 0;
    Window child = 0;
    int ignored = 0;
    unsigned int modifiers = 0;
    return XQueryPointer(connection, DefaultRootWindow(connection), &root, &child, &ignored, &ignored,
                         &ignored, &ignored, &modifiers) == True &&
           child == 0;
}

gboolean dropPerformed(GSignalInvocationHint* /*hint*/, guint /*count*/, const GValue* values,
                       gpointer /*data*/) {
    GdkDrag* drag = GDK_DRAG(g_value_get_object(values));
    if (gdk_content_formats_contain_mime_type(gdk_drag_get_formats(drag), "application/x-rootwindow-drop") &&
        isOnBareDesktop(drag)) {
        const auto finish = [](gpointer data) -> gboolean {
            const std::unique_ptr<GObjectPtr<GdkDrag>> dropped(static_cast<GObjectPtr<GdkDrag>*>(data));
            g_signal_emit_by_name(dropped->get(), "dnd-finished");
            return G_SOURCE_REMOVE;
        };
        g_idle_add(finish,
                   std::make_unique<GObjectPtr<GdkDrag>>(GObjectPtr<GdkDrag>::retain(drag)).release());
    }
    return TRUE; // keeps the hook for the next drop
}

} // namespace

void endTabDragsOnBareDesktop() {
    // The signals of a class exist only after the class has been initialized.
    const std::unique_ptr<void, decltype(&g_type_class_unref)> drags(g_type_class_ref(GDK_TYPE_DRAG),
                                                                     &g_type_class_unref);
    g_signal_add_emission_hook(g_signal_lookup("drop-performed", GDK_TYPE_DRAG), 0, dropPerformed, nullptr,
                               nullptr);
}

} // namespace Platform
