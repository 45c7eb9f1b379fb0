#pragma once

#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

/// What the toolkit's own text widget tells, and the focus that the window follows.
struct TextFieldEvents {
    struct Native final : View::Native {
        GtkText* text = nullptr; // the focus widget inside `widget`
        bool settingText = false;
        bool isEmptiedByEscape = false;
    };

    /// Makes the native side of a field around one of GTK's single-line editors.
    static std::unique_ptr<Native> make(TextField& field, GtkWidget* editable);

    /// Another control of the same page took the focus.
    static void focusLeft(TextField& field);

private:
    static Native& nativeOf(TextField& field) { return static_cast<Native&>(field.native()); }
    static void insertText(GtkEditable* editable, const char* text, int length, int* position, gpointer data);
    static void changed(GtkEditable* editable, gpointer self);
    static void preeditChanged(GtkText* text, const char* preedit, gpointer self);
    static void activated(GtkWidget* widget, gpointer self);
    static gboolean keyPressed(GtkEventControllerKey* controller, guint keyval, guint keycode,
                               GdkModifierType state, gpointer self);

    friend class TextField;
};

} // namespace Platform
