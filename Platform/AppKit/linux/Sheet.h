#pragma once

#include "Platform/AppKit/Alert.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace Platform {

/// The card of an alert on a shade that covers what is behind it.
class Sheet {
public:
    Sheet(Alert alert, Alert::Completion completion);
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;
    ~Sheet();

    /// The widget to put over the page; made at the first call. `answered` is told the button that the user
    /// chose.
    GtkWidget* widget(std::function<void(std::size_t)> answered);

    GtkWidget* widgetIfMade() const { return shade_.get(); }

    /// Gives the default button the focus.
    void focus();

    /// Calls the completion, the first time only.
    void complete(std::size_t button);

    /// The button that harms least when nobody can be asked any more.
    std::size_t safeButton() const { return alert_.buttonTitles.size() - 1; }

private:
    GtkWidget* makeCard();
    void answer(std::size_t button);
    std::size_t escapeButton() const;
    /// Goes on inside the sheet, round and round.
    void moveFocus(std::ptrdiff_t step);
    gboolean keyPressed(GtkEventControllerKey* keys, guint keyval, guint keycode, GdkModifierType state);
    void clicked(GtkButton* button);

    Alert alert_;
    Alert::Completion completion_;
    std::function<void(std::size_t)> answered_;
    GObjectPtr<GtkWidget> shade_;
    std::vector<GtkWidget*> buttons_;
    /// Where the keyboard can be, from the first to the last.
    std::vector<GtkWidget*> stops_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
