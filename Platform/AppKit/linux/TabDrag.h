#pragma once

namespace Platform {

/// Gives a tab that is dropped on a bare X11 desktop, on which no window could receive it, a window of its
/// own. GTK waits for an answer from the root window that never comes, and the tab would be lost (seen with
/// 4.8.3, not reported). Call it once, after GTK is initialized.
void endTabDragsOnBareDesktop();

} // namespace Platform
