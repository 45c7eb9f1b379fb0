#include <gtk/gtk.h>

/// A program that is unrelated to Keyloft. It shows a window, which takes the keyboard focus.
int main() {
    gtk_init();
    GtkWidget* window = gtk_window_new();
    gtk_window_set_title(GTK_WINDOW(window), "Other Program");
    gtk_window_set_default_size(GTK_WINDOW(window), 300, 200);
    gtk_window_present(GTK_WINDOW(window));
    while (true) {
        g_main_context_iteration(nullptr, TRUE);
    }
}
