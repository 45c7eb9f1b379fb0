#include "Platform/AppKit/linux/Sheet.h"

#include "Platform/AppKit/MainThread.h"
#include "Platform/AppKit/linux/SignalHandler.h"
#include "Platform/AppKit/linux/ViewNative.h"
#include "Platform/Foundation/RunLoop.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Platform {

namespace {

constexpr int cardWidth = 380;
constexpr int textHeight = 300;
constexpr int textWidthInCharacters = 40;

/// Returns the desktop's text scale, which is 1 by default.
double textScale() {
    int resolution = 0; // in 1/1024 dots per inch
    g_object_get(gtk_settings_get_default(), "gtk-xft-dpi", &resolution, nullptr);
    return resolution > 0 ? resolution / (96.0 * 1024) : 1;
}

/// Returns true if a word is so long that Pango takes noticeable time to break it. The time grows with the
/// square of the word's length (seen with GTK 4.8.3, not reported).
bool hasEndlessWord(const std::string& text) {
    constexpr std::size_t endless = 500;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find_first_of(" \n", begin), text.size());
        if (end - begin > endless) {
            return true;
        }
        begin = end + 1;
    }
    return false;
}

GtkWidget* makeLabel(const std::string& text, const char* cssClass) {
    GtkWidget* label = gtk_label_new(text.c_str());
    gtk_label_set_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_wrap_mode(GTK_LABEL(label), hasEndlessWord(text) ? PANGO_WRAP_CHAR : PANGO_WRAP_WORD_CHAR);
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
    gtk_label_set_max_width_chars(GTK_LABEL(label), textWidthInCharacters);
    gtk_widget_add_css_class(label, cssClass);
    return label;
}

} // namespace

Sheet::Sheet(const Alert& alert, std::function<void(std::size_t)> answered)
    : escapeButton_(alert.escapeButton())
    , answered_(std::move(answered))
    , shade_(GObjectPtr<GtkWidget>::retain(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))) {
    gtk_widget_add_css_class(shade_.get(), "keyloft-shade");
    gtk_box_append(GTK_BOX(shade_.get()), makeCard(alert));

    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    gtk_widget_add_controller(shade_.get(), keys);
    connections_.push_back(connectSignal<&Sheet::keyPressed>(keys, "key-pressed", *this));
}

Sheet::~Sheet() = default;

void Sheet::answer(std::size_t button) {
    const auto answered = answered_;
    answered(button);
}

void Sheet::focus() { gtk_widget_grab_focus(buttons_.front()); }

gboolean Sheet::keyPressed(GtkEventControllerKey* /*keys*/, guint keyval, guint /*keycode*/,
                           GdkModifierType state) {
    const bool withControl = (state & GDK_CONTROL_MASK) != 0;
    switch (keyval) {
    case GDK_KEY_Escape:
        answer(escapeButton_);
        return GDK_EVENT_STOP;
    case GDK_KEY_Tab:
    case GDK_KEY_KP_Tab:
    case GDK_KEY_ISO_Left_Tab:
        if (withControl) { // Control+Tab selects another tab
            return GDK_EVENT_PROPAGATE;
        }
        moveFocus((state & GDK_SHIFT_MASK) != 0 ? -1 : 1);
        return GDK_EVENT_STOP;
    default:
        return GDK_EVENT_PROPAGATE;
    }
}

void Sheet::clicked(GtkButton* button) {
    const auto position = std::ranges::find(buttons_, GTK_WIDGET(button));
    answer(static_cast<std::size_t>(position - buttons_.begin()));
}

void Sheet::moveFocus(std::ptrdiff_t step) {
    const auto count = std::ssize(stops_);
    const auto focused = std::ranges::find_if(stops_, gtk_widget_is_focus);
    auto next = focused - stops_.begin();
    do {
        next = (next + step + count) % count;
    } while (!gtk_widget_get_focusable(stops_[static_cast<std::size_t>(next)]));
    gtk_window_set_focus_visible(GTK_WINDOW(gtk_widget_get_root(shade_.get())), TRUE);
    gtk_widget_grab_focus(stops_[static_cast<std::size_t>(next)]);
}

/// Makes the alert's text focusable only while it needs to scroll.
void Sheet::textResized(GtkAdjustment* visible) {
    gtk_widget_set_focusable(stops_.front(),
                             gtk_adjustment_get_upper(visible) > gtk_adjustment_get_page_size(visible));
}

GtkWidget* Sheet::makeCard(const Alert& alert) {
    GtkWidget* card =
        GTK_WIDGET(g_object_new(GTK_TYPE_BOX, "orientation", GTK_ORIENTATION_VERTICAL, "spacing", 12,
                                "halign", GTK_ALIGN_CENTER, "valign", GTK_ALIGN_CENTER, "vexpand", TRUE,
                                "accessible-role", GTK_ACCESSIBLE_ROLE_ALERT_DIALOG, nullptr));
    gtk_widget_add_css_class(card, "keyloft-sheet");
    gtk_widget_set_size_request(card, cardWidth, -1);
    setAccessibleName(card, alert.messageText);
    // Only the text scrolls, so that the buttons stay visible even if the text is long.
    GtkWidget* texts = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
    gtk_box_append(GTK_BOX(texts), makeLabel(alert.messageText, "title-4"));
    GtkWidget* text = makeLabel(alert.informativeText, "body");
    // Without a requested width, GTK lays out a long text repeatedly to choose a width, which takes seconds
    // (seen with 4.8.3, not reported).
    // Request the same number of pixels at any text scale, because the window does not grow with the text.
    gtk_label_set_width_chars(GTK_LABEL(text), static_cast<int>(textWidthInCharacters / textScale()));
    gtk_box_append(GTK_BOX(texts), text);
    GtkWidget* scroller = gtk_scrolled_window_new();
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_propagate_natural_height(GTK_SCROLLED_WINDOW(scroller), TRUE);
    gtk_scrolled_window_set_max_content_height(GTK_SCROLLED_WINDOW(scroller),
                                               static_cast<int>(textHeight * textScale()));
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scroller), texts);
    gtk_widget_set_focusable(scroller, FALSE);
    connections_.push_back(connectSignal<&Sheet::textResized>(
        gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller)), "changed", *this));
    gtk_box_append(GTK_BOX(card), scroller);
    stops_.push_back(scroller);

    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12);
    gtk_box_set_homogeneous(GTK_BOX(row), TRUE);
    gtk_widget_set_margin_top(row, 12);
    for (std::size_t i = 0; i < alert.buttonTitles.size(); ++i) {
        GtkWidget* button = gtk_button_new_with_label(alert.buttonTitles[i].c_str());
        if (i == 0) {
            gtk_widget_add_css_class(button, "suggested-action");
        }
        gtk_widget_set_hexpand(button, TRUE);
        connections_.push_back(connectSignal<&Sheet::clicked>(button, "clicked", *this));
        buttons_.push_back(button);
        // The default button is at the trailing end of the row.
        gtk_box_prepend(GTK_BOX(row), button);
    }
    stops_.insert(stops_.end(), buttons_.rbegin(), buttons_.rend());
    gtk_box_append(GTK_BOX(card), row);
    return card;
}

std::size_t Alert::runModal() const {
    assertMainThread("Alert::runModal");
    const auto toplevel = GObjectPtr<GtkWidget>::retain(gtk_window_new());
    std::size_t answer = safeButton();
    Sheet sheet(*this, [&](std::size_t button) {
        answer = button;
        RunLoop::main().stop();
    });
    const SignalConnection closing(toplevel.get(), "close-request",
                                   G_CALLBACK(+[](GtkWindow* /*window*/, gpointer /*data*/) -> gboolean {
                                       RunLoop::main().stop();
                                       return GDK_EVENT_STOP;
                                   }),
                                   nullptr);
    gtk_window_set_modal(GTK_WINDOW(toplevel.get()), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(toplevel.get()), FALSE);
    gtk_window_set_child(GTK_WINDOW(toplevel.get()), sheet.widget());
    gtk_window_present(GTK_WINDOW(toplevel.get()));
    sheet.focus();
    RunLoop::main().run();
    gtk_window_destroy(GTK_WINDOW(toplevel.get()));
    return answer;
}

} // namespace Platform
