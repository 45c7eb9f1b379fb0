#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace Platform {

/// Drops key events that a page returns unhandled after the focus has moved to another widget.
///
/// WebKitGTK returns an unhandled key event as if the key had just been pressed. By then the focus may be in
/// the next widget, where WebKitGTK itself moves it on Tab, or in a window that the page has opened. That
/// widget would handle the key a second time.
class ReturnedKeys {
public:
    explicit ReturnedKeys(GtkWindow* toplevel);
    ReturnedKeys(const ReturnedKeys&) = delete;
    ReturnedKeys& operator=(const ReturnedKeys&) = delete;
    ~ReturnedKeys() = default;

private:
    struct Unref {
        void operator()(GdkEvent* event) const { gdk_event_unref(event); }
    };
    struct Pressed {
        std::unique_ptr<GdkEvent, Unref> event;
        std::uint64_t focusMoves;
    };

    gboolean pressed(GtkEventControllerKey* keys, guint, guint, GdkModifierType);
    void focusMoved(GtkWindow*, GParamSpec*) { ++focusMoves_; }
    bool isForOther(GdkEvent* event);

    std::uint64_t focusMoves_ = 0;
    /// What may yet come back, perhaps not only once, for an input method gives keys back as well.
    std::deque<Pressed> pressed_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
