#include "Platform/AppKit/linux/AboutPanel.h"

#include "Platform/AppKit/ProgramInfo.h"
#include "Platform/AppKit/linux/MenuBar.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/WindowNative.h"

namespace Platform {

AboutPanel::~AboutPanel() { close(); }

void AboutPanel::orderFront(GtkWindow* parent, const std::shared_ptr<Menu>& mainMenu) {
    if (!dialog_) {
        dialog_ = GObjectPtr<GtkWidget>::retain(gtk_about_dialog_new());
        const ProgramInfo& program = programInfo();
        g_object_set(dialog_.get(), "program-name", program.name.c_str(), "version", program.version.c_str(),
                     "comments", program.description.c_str(), "copyright", program.copyright.c_str(),
                     "license-type", GTK_LICENSE_MIT_X11, "logo-icon-name", program.identifier.c_str(),
                     nullptr);
        closing_ = connectSignal<&AboutPanel::closeRequested>(dialog_.get(), "close-request", *this);
        if (mainMenu) {
            addKeyEquivalents(dialog_.get(), *mainMenu);
        }
    }
    gtk_window_set_transient_for(GTK_WINDOW(dialog_.get()), parent);
    gtk_window_present(GTK_WINDOW(dialog_.get()));
}

gboolean AboutPanel::closeRequested(GtkWindow* /*dialog*/) {
    close();
    return GDK_EVENT_STOP;
}

void AboutPanel::close() {
    closing_.disconnect();
    if (const auto dialog = std::exchange(dialog_, {})) {
        gtk_window_destroy(GTK_WINDOW(dialog.get()));
    }
}

bool AboutPanel::isKey() const { return dialog_ && gtk_window_is_active(GTK_WINDOW(dialog_.get())); }

bool AboutPanel::respondsTo(Action action) const { return Window::Native::isWindowAction(action); }

void AboutPanel::perform(Action action, const ActionSender& /*sender*/) {
    if (action == StandardAction::performClose) {
        close();
    }
}

bool AboutPanel::validateMenuItem(MenuItem& item) { return item.action() == StandardAction::performClose; }

} // namespace Platform
