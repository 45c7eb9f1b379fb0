#include "Platform/AppKit/TextField.h"

#include "Platform/AppKit/Window.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/TextFieldNative.h"

#include <cstring>
#include <map>

namespace Platform {

namespace {

/// The names of the standard actions in GTK's text widget.
const std::map<Action, const char*>& textActions() {
    static const std::map<Action, const char*> table = {
        {StandardAction::undo, "text.undo"},        {StandardAction::redo, "text.redo"},
        {StandardAction::cut, "clipboard.cut"},     {StandardAction::copy, "clipboard.copy"},
        {StandardAction::paste, "clipboard.paste"}, {StandardAction::selectAll, "selection.select-all"},
    };
    return table;
}

} // namespace

std::string TextField::stringValue() const { return stringValue_; }

void TextField::applyStringValue(Native& native, const std::string& value) {
    auto& events = static_cast<TextFieldEvents&>(native);
    events.settingText = true;
    gtk_editable_set_text(GTK_EDITABLE(events.widget.get()), value.c_str());
    events.settingText = false;
}

void TextField::applyPlaceholder(Native& native, const std::string& placeholder) {
    g_object_set(native.widget.get(), "placeholder-text", placeholder.c_str(), nullptr);
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
    if (const auto* native = static_cast<TextFieldEvents*>(nativeIfMade())) {
        gtk_widget_activate_action(GTK_WIDGET(native->text), textActions().at(action), nullptr);
    }
}

std::unique_ptr<View::Native> TextField::makeNative() {
    return std::make_unique<TextFieldEvents>(*this, gtk_entry_new());
}

std::unique_ptr<View::Native> SearchField::makeNative() {
    return std::make_unique<TextFieldEvents>(*this, gtk_search_entry_new());
}

void TextField::applyFont(Native& native) {
    if (const auto wanted = font()) {
        gtk_text_set_attributes(static_cast<TextFieldEvents&>(native).text,
                                fontAttributes(wanted->systemFontSize));
    }
}

TextFieldEvents::TextFieldEvents(TextField& owner, GtkWidget* editable)
    : field(owner)
    , text(GTK_TEXT(gtk_editable_get_delegate(GTK_EDITABLE(editable)))) {
    widget = GObjectPtr<GtkWidget>::retain(editable);
    gtk_editable_set_text(GTK_EDITABLE(editable), field.stringValue_.c_str());
    g_object_set(editable, "placeholder-text", field.placeholder_.c_str(), nullptr);
    // Request no width for the text, which scrolls. By default, GTK requests enough width for a few words.
    gtk_editable_set_width_chars(GTK_EDITABLE(editable), 0);
    // Set a natural width in characters, so that a field with a fixed width can grow with the text scale.
    gtk_editable_set_max_width_chars(GTK_EDITABLE(editable), 17);
    // Also keep the placeholder from requesting a width.
    GtkWidget* placeholder = gtk_widget_get_first_child(GTK_WIDGET(text));
    if (GTK_IS_LABEL(placeholder)) {
        gtk_label_set_max_width_chars(GTK_LABEL(placeholder), 0);
    }
    gtk_widget_set_sensitive(editable, field.isEnabled());
    if (field.font()) {
        field.applyFont(*this);
    }

    using Events = TextFieldEvents;
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_widget_add_controller(editable, keys);
    connections.push_back(connectSignal<&Events::insertText>(text, "insert-text", *this));
    connections.push_back(connectSignal<&Events::changed>(editable, "changed", *this));
    connections.push_back(connectSignal<&Events::preeditChanged>(text, "preedit-changed", *this));
    connections.push_back(connectSignal<&Events::activated>(editable, "activate", *this));
    connections.push_back(connectSignal<&Events::keyPressed>(keys, "key-pressed", *this));
}

void TextFieldEvents::insertText(GtkEditable* editable, const char* inserted, int length, int* position) {
    const std::string all(inserted, length < 0 ? std::strlen(inserted) : static_cast<std::size_t>(length));
    const std::string line = TextField::withoutLineBreaks(all);
    if (line == all) {
        return;
    }
    g_signal_stop_emission_by_name(editable, "insert-text");
    gtk_editable_insert_text(editable, line.c_str(), static_cast<int>(line.size()), position);
}

void TextFieldEvents::changed(GtkEditable* editable) {
    if (settingText) {
        return;
    }
    field.stringValue_ = gtk_editable_get_text(editable);
    field.beginEditing();
}

void TextFieldEvents::preeditChanged(GtkText* /*source*/, const char* preedit) {
    if (*preedit != '\0') {
        field.beginEditing();
    }
}

void TextFieldEvents::activated(GtkWidget* /*editable*/) {
    field.endEditing(TextMovement::returnKey);
    field.sendAction();
}

gboolean TextFieldEvents::keyPressed(GtkEventControllerKey* /*keys*/, guint keyval, guint /*keycode*/,
                                     GdkModifierType /*state*/) {
    if (keyval != GDK_KEY_Escape) {
        return GDK_EVENT_PROPAGATE;
    }
    field.cancelEditing();
    return GDK_EVENT_STOP;
}

} // namespace Platform
