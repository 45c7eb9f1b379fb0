#include "Platform/AppKit/TextField.h"

#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/TextFieldNative.h"

#include <cstring>
#include <map>

namespace Platform {

namespace {

/// The name of the text widget's own action for an editing action, or nothing.
const char* textActionName(Action action) {
    static const std::map<Action, const char*> names = {
        {StandardAction::undo, "text.undo"},        {StandardAction::redo, "text.redo"},
        {StandardAction::cut, "clipboard.cut"},     {StandardAction::copy, "clipboard.copy"},
        {StandardAction::paste, "clipboard.paste"}, {StandardAction::selectAll, "selection.select-all"},
    };
    const auto found = names.find(action);
    return found == names.end() ? nullptr : found->second;
}

} // namespace

std::string TextField::stringValue() const { return stringValue_; }

void TextField::setStringValue(const std::string& value) {
    const std::string line = withoutLineBreaks(value);
    if (stringValue_ == line) {
        return;
    }
    stringValue_ = line;
    if (nativeIfMade()) {
        auto& native = TextFieldEvents::nativeOf(*this);
        native.settingText = true;
        gtk_editable_set_text(GTK_EDITABLE(native.widget.get()), line.c_str());
        native.settingText = false;
    }
}

void TextField::setPlaceholder(const std::string& placeholder) {
    placeholder_ = placeholder;
    if (const Native* made = nativeIfMade()) {
        g_object_set(made->widget.get(), "placeholder-text", placeholder.c_str(), nullptr);
    }
}

void TextField::selectText() {
    if (const auto window = this->window()) {
        window->makeFirstResponder(shared_from_this());
    }
    if (const Native* made = nativeIfMade()) {
        gtk_editable_select_region(GTK_EDITABLE(made->widget.get()), 0, -1);
    }
}

void TextField::perform(Action action, const ActionSender& /*sender*/) {
    if (nativeIfMade()) {
        gtk_widget_activate_action(GTK_WIDGET(TextFieldEvents::nativeOf(*this).text), textActionName(action),
                                   nullptr);
    }
}

std::unique_ptr<View::Native> TextField::makeNative() {
    return TextFieldEvents::make(*this, gtk_entry_new());
}

void TextField::applyFont(Native& native) {
    if (const auto wanted = font()) {
        gtk_text_set_attributes(static_cast<TextFieldEvents::Native&>(native).text,
                                fontAttributes(wanted->systemFontSize));
    }
}

std::unique_ptr<TextFieldEvents::Native> TextFieldEvents::make(TextField& field, GtkWidget* editable) {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(editable);
    native->text = GTK_TEXT(gtk_editable_get_delegate(GTK_EDITABLE(editable)));
    gtk_editable_set_text(GTK_EDITABLE(editable), field.stringValue_.c_str());
    g_object_set(editable, "placeholder-text", field.placeholder_.c_str(), nullptr);
    // A long text scrolls; without this the field would ask for as much room as a few words take.
    gtk_editable_set_width_chars(GTK_EDITABLE(editable), 0);
    // So would the placeholder.
    GtkWidget* placeholder = gtk_widget_get_first_child(GTK_WIDGET(native->text));
    if (GTK_IS_LABEL(placeholder)) {
        gtk_label_set_max_width_chars(GTK_LABEL(placeholder), 0);
    }
    gtk_widget_set_sensitive(editable, field.isEnabled());
    if (field.font()) {
        field.applyFont(*native);
    }

    native->connections.emplace_back(native->text, "insert-text", G_CALLBACK(insertText), nullptr);
    native->connections.emplace_back(editable, "changed", G_CALLBACK(changed), &field);
    native->connections.emplace_back(native->text, "preedit-changed", G_CALLBACK(preeditChanged), &field);
    native->connections.emplace_back(editable, "activate", G_CALLBACK(activated), &field);
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_widget_add_controller(editable, keys);
    native->connections.emplace_back(keys, "key-pressed", G_CALLBACK(keyPressed), &field);
    return native;
}

void TextFieldEvents::focusLeft(TextField& field) {
    const auto keptAlive = field.shared_from_this();
    field.endEditing(TextMovement::other);
}

void TextFieldEvents::insertText(GtkEditable* editable, const char* text, int length, int* position,
                                 gpointer /*data*/) {
    const std::string inserted(text, length < 0 ? std::strlen(text) : static_cast<std::size_t>(length));
    const std::string line = TextField::withoutLineBreaks(inserted);
    if (line == inserted) {
        return;
    }
    g_signal_stop_emission_by_name(editable, "insert-text");
    gtk_editable_insert_text(editable, line.c_str(), static_cast<int>(line.size()), position);
}

void TextFieldEvents::changed(GtkEditable* editable, gpointer self) {
    auto& field = *static_cast<TextField*>(self);
    if (nativeOf(field).settingText) {
        return;
    }
    const auto keptAlive = field.shared_from_this();
    field.stringValue_ = gtk_editable_get_text(editable);
    field.beginEditing();
}

void TextFieldEvents::preeditChanged(GtkText* /*text*/, const char* preedit, gpointer self) {
    if (*preedit == '\0') {
        return;
    }
    auto& field = *static_cast<TextField*>(self);
    const auto keptAlive = field.shared_from_this();
    field.beginEditing();
}

void TextFieldEvents::activated(GtkWidget* /*widget*/, gpointer self) {
    auto& field = *static_cast<TextField*>(self);
    const auto keptAlive = field.shared_from_this();
    field.endEditing(TextMovement::returnKey);
    field.sendAction();
}

gboolean TextFieldEvents::keyPressed(GtkEventControllerKey* /*controller*/, guint keyval, guint /*keycode*/,
                                     GdkModifierType /*state*/, gpointer self) {
    if (keyval != GDK_KEY_Escape) {
        return GDK_EVENT_PROPAGATE;
    }
    auto& field = *static_cast<TextField*>(self);
    const auto keptAlive = field.shared_from_this();
    if (nativeOf(field).isEmptiedByEscape) {
        field.setStringValue("");
    }
    field.endEditing(TextMovement::cancel);
    field.selectText();
    return GDK_EVENT_STOP;
}

} // namespace Platform
