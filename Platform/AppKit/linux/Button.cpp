#include "Platform/AppKit/Button.h"

#include "Platform/AppKit/linux/Style.h"
#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

std::unique_ptr<View::Native> Button::makeNative() {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(gtk_button_new());
    GtkWidget* widget = native->widget.get();
    if (image_) {
        applyImage(*native);
    } else {
        gtk_button_set_label(GTK_BUTTON(widget), title_.c_str());
    }
    applyStyle(*native);
    if (font()) {
        applyFont(*native);
    }
    gtk_widget_set_sensitive(widget, isEnabled());
    gtk_widget_set_focus_on_click(widget, FALSE);
    native->connections.emplace_back(widget, "clicked", G_CALLBACK(+[](GtkButton* /*button*/, gpointer self) {
                                         static_cast<Button*>(self)->sendAction();
                                     }),
                                     this);
    return native;
}

void Button::applyImage(Native& native) const {
    if (!image_) {
        return;
    }
    gtk_button_set_icon_name(GTK_BUTTON(native.widget.get()), iconName(image_->symbolName));
    setAccessibleName(native.widget.get(), image_->accessibilityDescription);
}

void Button::applyStyle(Native& native) const {
    GtkWidget* widget = native.widget.get();
    gtk_button_set_has_frame(GTK_BUTTON(widget), bordered_);
    if (bezelStyle_ == BezelStyle::recessed) {
        gtk_widget_add_css_class(widget, "keyloft-recessed");
    } else {
        gtk_widget_remove_css_class(widget, "keyloft-recessed");
    }
}

void Button::applyFont(Native& native) {
    GtkWidget* label = gtk_button_get_child(GTK_BUTTON(native.widget.get()));
    if (const auto wanted = font(); wanted && GTK_IS_LABEL(label)) {
        gtk_label_set_attributes(GTK_LABEL(label), fontAttributes(wanted->systemFontSize));
    }
}

} // namespace Platform
