#pragma once

#include <gtk/gtk.h>

#include <string>

namespace Platform {

/// Gives the display the few rules that the theme does not have; once a display.
void installStyle();

/// The name of the theme's icon for a system symbol.
const char* iconName(const std::string& symbolName);

/// Text attributes of the system's font at `points` logical pixels, shared by all that ask for the same size.
PangoAttrList* fontAttributes(double points);

/// `text`, or beginning and end of one that is too long for a tool tip: the toolkit would take seconds to
/// break it into more lines than the screen has.
std::string toolTipText(const std::string& text);

} // namespace Platform
