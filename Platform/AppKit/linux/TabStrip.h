#pragma once

#include <adwaita.h>

namespace Platform {

/// Gives the tabs of `bar` and their close buttons accessible roles, names and states, which libadwaita
/// omits (seen with 1.2.2, not reported). Call it after `bar` gets its view, before it is in a window.
void describeTabs(AdwTabBar* bar);

/// Ensures that a tab dropped on the bare X11 desktop gets its own window. Otherwise, the tab would be lost,
/// because GTK waits forever for the root window to reply to the drop (seen with GTK 4.8.3, not reported).
/// Call once, after GTK is initialized.
void endTabDragsOnBareDesktop();

} // namespace Platform
