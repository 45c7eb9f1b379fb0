#include "Platform/AppKit/Alert.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/WindowNative.h"

#include <utility>

namespace Platform {

void Alert::beginSheetModal(const std::shared_ptr<Window>& window, Completion completion) const {
    assertMainThread("Alert::beginSheetModal");
    window->native().sheets.add(*this, std::move(completion));
}

std::size_t Alert::runModal() const {
    assertMainThread("Alert::runModal");
    const auto toplevel = GObjectPtr<GtkWidget>::retain(gtk_window_new());
    const auto loop = std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)>(
        g_main_loop_new(nullptr, FALSE), &g_main_loop_unref);
    std::size_t answer = safeButton();
    Sheet sheet(*this, [&](std::size_t button) {
        answer = button;
        g_main_loop_quit(loop.get());
    });
    const SignalConnection closing(toplevel.get(), "close-request",
                                   G_CALLBACK(+[](GtkWindow* /*window*/, gpointer running) -> gboolean {
                                       g_main_loop_quit(static_cast<GMainLoop*>(running));
                                       return TRUE;
                                   }),
                                   loop.get());
    gtk_window_set_modal(GTK_WINDOW(toplevel.get()), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(toplevel.get()), FALSE);
    gtk_window_set_child(GTK_WINDOW(toplevel.get()), sheet.widget());
    gtk_window_present(GTK_WINDOW(toplevel.get()));
    sheet.focus();
    g_main_loop_run(loop.get());
    gtk_window_destroy(GTK_WINDOW(toplevel.get()));
    return answer;
}

} // namespace Platform
