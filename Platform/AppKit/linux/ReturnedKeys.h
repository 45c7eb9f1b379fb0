#pragma once

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace Platform {

/// Keeps keys that come back from a page from whoever has the focus by then.
///
/// A key that a page does not want is given back by the engine as if it had just been pressed. Meanwhile the
/// focus may have moved: to what is next to the page, where the engine puts it itself at Tab, or into a
/// window that the page has opened. There the key would be obeyed a second time.
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

    static gboolean pressed(GtkEventControllerKey* keys, guint, guint, GdkModifierType, gpointer self);
    bool isForOther(GdkEvent* event);

    std::uint64_t focusMoves_ = 0;
    /// What may yet come back, perhaps not only once, for an input method gives keys back as well.
    std::deque<Pressed> pressed_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
