#include "Platform/AppKit/linux/TabAccessibility.h"

#include "Platform/AppKit/linux/ViewNative.h"

#include <string_view>

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
    // The parent of the AdwTab receives the focus. GTK permits setting a role only outside of a window.
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

} // namespace

void describeTabs(AdwTabBar* bar) {
    g_object_set(bar, "accessible-role", GTK_ACCESSIBLE_ROLE_TAB_LIST, nullptr);
    setAccessibleName(GTK_WIDGET(bar), "Tabs");
    g_signal_connect_object(adw_tab_bar_get_view(bar), "page-attached", G_CALLBACK(pageAttached), bar,
                            GConnectFlags{});
}

} // namespace Platform
