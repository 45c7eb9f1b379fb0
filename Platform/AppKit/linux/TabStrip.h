#pragma once

#include <adwaita.h>

namespace Platform {

/// Gives the tabs of `bar` and their close buttons accessible roles, names and states, which libadwaita
/// omits (seen with 1.2.2, not reported). Call it after `bar` gets its view, before it is in a window.
void describeTabs(AdwTabBar* bar);

/// Makes sure that a tab that is dropped on the bare X11 desktop gets its own window. No window receives such
/// a drop, and GTK waits forever for the root window to reply, so the tab would be lost (seen with 4.8.3, not
/// reported). Call it once, after GTK is initialized.
void endTabDragsOnBareDesktop();

} // namespace Platform
