#pragma once

namespace Platform {

/// Makes sure that a tab that is dropped on the bare X11 desktop gets its own window. No window receives such
/// a drop, and GTK waits forever for the root window to reply, so the tab would be lost (seen with 4.8.3, not
/// reported). Call it once, after GTK is initialized.
void endTabDragsOnBareDesktop();

} // namespace Platform
