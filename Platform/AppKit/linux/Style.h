#pragma once

#include <gtk/gtk.h>

#include <string>

namespace Platform {

/// Adds the style rules and icons that the theme lacks. Call it once, after GTK is initialized.
void installStyle();

/// Returns the name of the icon for a macOS symbol. Aborts if the symbol is unknown.
const char* iconName(const std::string& symbolName);

/// Returns attributes that set the font size to `points` logical pixels, multiplied by the text scale. All
/// callers that request the same size share the list, which exists until the process exits.
PangoAttrList* fontAttributes(double points);

/// Returns `text`, or only its beginning and end if it is too long for a tooltip. GTK takes seconds to lay
/// out text that wraps to more lines than fit on the screen (seen with GTK 4.8.3, not reported).
std::string toolTipText(const std::string& text);

} // namespace Platform
