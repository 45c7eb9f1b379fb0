#include "Platform/AppKit/linux/ReturnedKeys.h"

#include "Platform/AppKit/linux/SignalHandler.h"

#include <algorithm>

namespace Platform {

namespace {

/// The number of key events to remember. Users do not type that many keys while a page is busy.
constexpr std::size_t keptKeys = 64;

} // namespace

ReturnedKeys::ReturnedKeys(GtkWindow* toplevel) {
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    connections_.push_back(connectSignal<&ReturnedKeys::pressed>(keys, "key-pressed", *this));
    connections_.push_back(connectSignal<&ReturnedKeys::focusMoved>(toplevel, "notify::focus-widget", *this));
    gtk_widget_add_controller(GTK_WIDGET(toplevel), keys);
}

gboolean ReturnedKeys::pressed(GtkEventControllerKey* keys, guint /*key*/, guint /*code*/,
                               GdkModifierType /*modifiers*/) {
    GdkEvent* event = gtk_event_controller_get_current_event(GTK_EVENT_CONTROLLER(keys));
    if (!isForOther(event)) {
        return GDK_EVENT_PROPAGATE;
    }
    // Show the focus ring, as GTK does when a key moves the focus.
    GtkWidget* toplevel = gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(keys));
    gtk_window_set_focus_visible(GTK_WINDOW(toplevel), TRUE);
    return GDK_EVENT_STOP;
}

bool ReturnedKeys::isForOther(GdkEvent* event) {
    const auto before =
        std::ranges::find(pressed_, event, [](const Pressed& other) { return other.event.get(); });
    if (before != pressed_.end()) {
        return before->focusMoves != focusMoves_;
    }
    if (pressed_.size() == keptKeys) {
        pressed_.pop_front();
    }
    pressed_.push_back(
        {.event = std::unique_ptr<GdkEvent, Unref>(gdk_event_ref(event)), .focusMoves = focusMoves_});
    return false;
}

} // namespace Platform
