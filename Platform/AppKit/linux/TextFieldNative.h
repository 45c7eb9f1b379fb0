#pragma once

#include "Platform/AppKit/TextField.h"
#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

/// What the toolkit's own text widget tells, and the focus that the window follows.
struct TextFieldEvents {
    struct Native final : View::Native {
        GtkText* text = nullptr; // the focus widget inside `widget`
        bool settingText = false;
    };

    /// The native side of a field around any of the toolkit's single-line editors.
    static std::unique_ptr<View::Native> make(TextField& field, GtkWidget* editable);

    /// Another control of the same page took the focus.
    static void focusLeft(TextField& field);

    /// Gives the focus back to a field that lost it to no other control: the selection is as it was.
    static void takeFocusBack(TextField& field);

private:
    static Native& nativeOf(TextField& field) { return static_cast<Native&>(field.native()); }
    static void changed(GtkEditable* editable, gpointer self);
    static void preeditChanged(GtkText* text, const char* preedit, gpointer self);
    static void activated(GtkWidget* widget, gpointer self);
    static gboolean keyPressed(GtkEventControllerKey* controller, guint keyval, guint keycode,
                               GdkModifierType state, gpointer self);

    friend class TextField;
};

} // namespace Platform
