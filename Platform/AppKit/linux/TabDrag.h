#pragma once

namespace Platform {

/// Has a tab that is dropped on a bare X11 desktop, where no window could take it, get a window of its own.
/// The toolkit takes the desktop for somebody who will answer, and the tab would be lost. Once a process,
/// after the toolkit started.
void endTabDragsOnBareDesktop();

} // namespace Platform
