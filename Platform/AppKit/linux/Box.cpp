#include "Platform/AppKit/Box.h"

#include "Platform/AppKit/linux/ViewNative.h"

namespace Platform {

std::unique_ptr<View::Native> Box::makeNative() {
    auto native = std::make_unique<Native>();
    native->widget = GObjectPtr<GtkWidget>::retain(gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
    return native;
}

} // namespace Platform
