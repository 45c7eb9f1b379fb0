#pragma once

#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/linux/ViewNative.h"

#include <memory>

namespace Platform {

/// The widget of a text field, which is a GtkEntry or GtkSearchEntry, and the handlers of its signals.
struct TextFieldEvents final : View::Native {
    TextFieldEvents(TextField& owner, GtkWidget* editable);

    std::shared_ptr<View> keepAlive() const { return field.weak_from_this().lock(); }

    void insertText(GtkEditable* editable, const char* inserted, int length, int* position);
    void changed(GtkEditable* editable);
    void preeditChanged(GtkText* source, const char* preedit);
    void activated(GtkWidget* editable);
    gboolean keyPressed(GtkEventControllerKey* keys, guint keyval, guint keycode, GdkModifierType state);

    TextField& field;
    GtkText* text = nullptr; // the part of `widget` that receives the focus
    bool settingText = false;
};

} // namespace Platform
