#pragma once

#include "Platform/AppKit/Alert.h"
#include "Platform/AppKit/linux/GObjectPtr.h"

#include <cstddef>
#include <functional>
#include <vector>

namespace Platform {

/// A card with an alert's text and buttons, on a translucent layer that covers the widgets below it.
class Sheet {
public:
    /// Calls `answered` with the index of the button that the user chooses. `answered` may destroy the sheet.
    Sheet(const Alert& alert, std::function<void(std::size_t)> answered);
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;
    ~Sheet();

    /// The widget that is shown over the page.
    GtkWidget* widget() const { return shade_.get(); }

    /// Moves the focus to the default button.
    void focus();

private:
    GtkWidget* makeCard(const Alert& alert);
    void answer(std::size_t button);
    /// Moves the focus by `step` positions in the Tab order, and wraps around at both ends.
    void moveFocus(std::ptrdiff_t step);
    gboolean keyPressed(GtkEventControllerKey* keys, guint keyval, guint keycode, GdkModifierType state);
    void clicked(GtkButton* button);
    void textResized(GtkAdjustment* visible);

    std::size_t escapeButton_;
    std::function<void(std::size_t)> answered_;
    GObjectPtr<GtkWidget> shade_;
    std::vector<GtkWidget*> buttons_;
    /// The scrolled text and the buttons, in Tab order.
    std::vector<GtkWidget*> stops_;
    std::vector<SignalConnection> connections_;
};

} // namespace Platform
