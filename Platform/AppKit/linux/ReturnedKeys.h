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
/// WebKitGTK returns an unhandled key event as if the key had just been pressed. If the focus has moved to
/// another widget, that widget would handle the key a second time. For example, WebKitGTK itself moves the
/// focus on Tab, and a page may open a window. Seen with WebKitGTK 2.50.6;
/// https://bugs.webkit.org/show_bug.cgi?id=261348 is about returned events in general.
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
    /// The latest key events. Each may be returned several times, because input methods also return events.
    std::deque<Pressed> pressed_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
