#pragma once

#include <gtk/gtk.h>

#include <string>

namespace Platform {

/// Adds the style rules and icons that the theme lacks to the default display. Call it once, after GTK is
/// initialized.
void installStyle();

/// Returns the name of the theme's icon for a symbol of macOS. Aborts if the symbol is unknown.
const char* iconName(const std::string& symbolName);

/// Returns attributes for text of `points` logical pixels. The list is shared by all callers with the same
/// size and lives as long as the process.
PangoAttrList* fontAttributes(double points);

/// Returns `text`, or its beginning and end if it is too long for a tool tip. GTK would take seconds to break
/// it into more lines than the screen has (seen with 4.8.3, not reported).
std::string toolTipText(const std::string& text);

} // namespace Platform
