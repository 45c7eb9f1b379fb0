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
    /// Calls `answered` with the index of the button that the user chooses. It may destroy the sheet.
    Sheet(const Alert& alert, std::function<void(std::size_t)> answered);
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;
    ~Sheet();

    /// The widget to put over the page.
    GtkWidget* widget() const { return shade_.get(); }

    /// Gives the default button the focus.
    void focus();

private:
    GtkWidget* makeCard(const Alert& alert);
    void answer(std::size_t button);
    /// Goes on inside the sheet, round and round.
    void moveFocus(std::ptrdiff_t step);
    gboolean keyPressed(GtkEventControllerKey* keys, guint keyval, guint keycode, GdkModifierType state);
    void clicked(GtkButton* button);
    void textResized(GtkAdjustment* visible);

    std::size_t escapeButton_;
    std::function<void(std::size_t)> answered_;
    GObjectPtr<GtkWidget> shade_;
    std::vector<GtkWidget*> buttons_;
    /// Where the keyboard can be, from the first to the last.
    std::vector<GtkWidget*> stops_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
