#include "Platform/AppKit/linux/AboutPanel.h"

#include "Platform/AppKit/Application.h"

namespace Platform {

AboutPanel::~AboutPanel() { close(); }

void AboutPanel::orderFront(GtkWindow* parent) {
    if (!dialog_) {
        dialog_ = GObjectPtr<GtkWidget>::retain(gtk_about_dialog_new());
        g_object_set(dialog_.get(), "program-name", Application::displayName, "version", KEYLOFT_VERSION,
                     "comments", "A small tabbed web browser", "copyright",
                     "Copyright 2026 the Keyloft developers", "license-type", GTK_LICENSE_MIT_X11,
                     "logo-icon-name", Application::identifier, nullptr);
        closing_ = SignalConnection(dialog_.get(), "close-request",
                                    G_CALLBACK(+[](GtkWindow* /*dialog*/, gpointer self) -> gboolean {
                                        static_cast<AboutPanel*>(self)->close();
                                        return GDK_EVENT_STOP;
                                    }),
                                    this);
    }
    gtk_window_set_transient_for(GTK_WINDOW(dialog_.get()), parent);
    gtk_window_present(GTK_WINDOW(dialog_.get()));
}

void AboutPanel::close() {
    closing_.disconnect();
    if (const auto dialog = std::exchange(dialog_, {}))
        gtk_window_destroy(GTK_WINDOW(dialog.get()));
}

} // namespace Platform
