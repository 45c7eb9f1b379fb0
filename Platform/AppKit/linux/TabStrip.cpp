#include "Platform/AppKit/linux/TabStrip.h"

#include "Platform/AppKit/linux/ViewNative.h"

#include <memory>
#include <string_view>

// Include gdkx.h last, because Xlib defines macros with common names.
// clang-format off
#include <gdk/x11/gdkx.h>
// clang-format on

namespace Platform {

namespace {

/// Returns the AdwTab of `page` inside `widget`, or null.
GtkWidget* findTab(GtkWidget* widget, AdwTabPage* page) {
    if (std::string_view(G_OBJECT_TYPE_NAME(widget)) == "AdwTab") {
        AdwTabPage* shown = nullptr;
        g_object_get(widget, "page", &shown, nullptr);
        return GObjectPtr<AdwTabPage>::adopt(shown).get() == page ? widget : nullptr;
    }
    GtkWidget* found = nullptr;
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child && !found;
         child = gtk_widget_get_next_sibling(child)) {
        found = findTab(child, page);
    }
    return found;
}

void update(AdwTabPage* page, GParamSpec* /*property*/, GtkWidget* focusable) {
    setAccessibleName(focusable, adw_tab_page_get_title(page));
    gtk_accessible_update_state(GTK_ACCESSIBLE(focusable), GTK_ACCESSIBLE_STATE_SELECTED,
                                adw_tab_page_get_selected(page), -1);
}

void pageAttached(AdwTabView* /*view*/, AdwTabPage* page, int /*position*/, GtkWidget* bar) {
    GtkWidget* tab = findTab(bar, page);
    if (!tab) {
        return;
    }
    for (GtkWidget* child = gtk_widget_get_first_child(tab); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (const char* toolTip = gtk_widget_get_tooltip_text(child)) { // only the close button has one
            setAccessibleName(child, toolTip);
        }
    }
    // The focusable widget is the AdwTab's parent. GTK permits setting its role only outside of a window.
    const auto focusable = GObjectPtr<GtkWidget>::retain(gtk_widget_get_parent(tab));
    GtkWidget* parent = gtk_widget_get_parent(focusable.get());
    GtkWidget* next = gtk_widget_get_next_sibling(focusable.get());
    gtk_widget_unparent(focusable.get());
    g_object_set(focusable.get(), "accessible-role", GTK_ACCESSIBLE_ROLE_TAB, nullptr);
    gtk_widget_insert_before(focusable.get(), parent, next);
    update(page, nullptr, focusable.get());
    for (const char* property : {"notify::title", "notify::selected"}) {
        g_signal_connect_object(page, property, G_CALLBACK(update), focusable.get(), GConnectFlags{});
    }
}

/// Returns true if the pointer is not over any window except the drag icon, which ignores pointer events.
bool isOnBareDesktop(GdkDrag* drag) {
    GdkDisplay* display = gdk_drag_get_display(drag);
    if (!GDK_IS_X11_DISPLAY(display)) {
        return false;
    }
    Display* connection = gdk_x11_display_get_xdisplay(display);
    ::Window root = 0;
    ::Window child = 0;
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

void describeTabs(AdwTabBar* bar) {
    g_object_set(bar, "accessible-role", GTK_ACCESSIBLE_ROLE_TAB_LIST, nullptr);
    setAccessibleName(GTK_WIDGET(bar), "Tabs");
    g_signal_connect_object(adw_tab_bar_get_view(bar), "page-attached", G_CALLBACK(pageAttached), bar,
                            GConnectFlags{});
}

void endTabDragsOnBareDesktop() {
    // The signals of a class exist only after the class has been initialized.
    const std::unique_ptr<void, decltype(&g_type_class_unref)> drags(g_type_class_ref(GDK_TYPE_DRAG),
                                                                     &g_type_class_unref);
    g_signal_add_emission_hook(g_signal_lookup("drop-performed", GDK_TYPE_DRAG), 0, dropPerformed, nullptr,
                               nullptr);
}

} // namespace Platform
