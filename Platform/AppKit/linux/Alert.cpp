#include "Platform/AppKit/Alert.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/Sheet.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/Foundation/RunLoop.h"

namespace Platform {

std::size_t Alert::runModal() const {
    assertMainThread("Alert::runModal");
    const auto toplevel = GObjectPtr<GtkWidget>::retain(gtk_window_new());
    std::size_t answer = safeButton();
    Sheet sheet(*this, [&](std::size_t button) {
        answer = button;
        RunLoop::main().stop();
    });
    const SignalConnection closing(toplevel.get(), "close-request",
                                   G_CALLBACK(+[](GtkWindow* /*window*/, gpointer /*data*/) -> gboolean {
                                       RunLoop::main().stop();
                                       return GDK_EVENT_STOP;
                                   }),
                                   nullptr);
    gtk_window_set_modal(GTK_WINDOW(toplevel.get()), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(toplevel.get()), FALSE);
    gtk_window_set_child(GTK_WINDOW(toplevel.get()), sheet.widget());
    gtk_window_present(GTK_WINDOW(toplevel.get()));
    sheet.focus();
    RunLoop::main().run();
    gtk_window_destroy(GTK_WINDOW(toplevel.get()));
    return answer;
}

} // namespace Platform
